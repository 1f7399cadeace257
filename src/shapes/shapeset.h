// What the sets of faces and of lines of one level have in common.
#pragma once

#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "lod/octreecoordset.h"
#include "lod/shape.h"
#include "reader/names.h"
#include "shapes/face.h"
#include "values/bounds.h"
#include "values/output.h"

namespace varimesh {

// Which index lists a shape has, besides its coordinates, and how its materials and normals are
// bound: 1 (none), or one of the indexed bindings, since shapes are always written indexed.
struct ShapeAttributes {
  int materialBinding = OVERALL;
  int normalBinding = OVERALL;
  bool hasMaterials = false;
  bool hasNormals = false;
  bool hasTextureCoords = false;
};

// One attribute of all shapes of a set: a number for each shape, or one for each of its corners.
class AttributeList {
 public:
  enum class Per { none, shape, corner };

  AttributeList(bool isPresent, int binding, unsigned corners)
      : per_(!isPresent                    ? Per::none
             : binding <= PER_FACE_INDEXED ? Per::shape
                                           : Per::corner),
        stride_(per_ == Per::corner ? corners : 1) {}

  [[nodiscard]] Per getPer() const { return per_; }
  void append(std::span<const Vertex> vertices, int Vertex::*attribute) {
    if (per_ == Per::none) return;
    for (unsigned i = 0; i < stride_; ++i) numbers_.push_back(vertices[i].*attribute);
  }
  // Takes over what another list has for a shape with the same corners.
  void append(const AttributeList& other, ShapeId shape) {
    if (per_ == Per::none) return;
    const auto first =
        other.numbers_.begin() + static_cast<std::ptrdiff_t>(std::size_t{shape} * stride_);
    numbers_.insert(numbers_.end(), first, first + static_cast<std::ptrdiff_t>(stride_));
  }
  [[nodiscard]] int get(ShapeId shape, unsigned corner) const {
    if (per_ == Per::none) return noIndex;
    return numbers_[std::size_t{shape} * stride_ + (per_ == Per::corner ? corner : 0)];
  }

 private:
  Per per_;
  unsigned stride_;
  std::vector<int> numbers_;
};

// The faces or lines of one shape at one level of detail.
class ShapeSet : public Shape {
 public:
  int lod;           // 0 for the input geometry
  int setCount = 0;  // shapes in the set
  float range = 0;   // distance from which the next level may be shown; 0 until known

  ShapeSet(int level, OctreeCoordSet& coords, const ShapeAttributes& given, unsigned corners)
      : lod(level),
        attributes(given),
        coordSet(coords),
        materials(given.hasMaterials, given.materialBinding, corners),
        normals(given.hasNormals, given.normalBinding, corners),
        textureCoords(given.hasTextureCoords, PER_VERTEX_INDEXED, corners) {}

  // Makes the set of the next level, after the coordinate set has made that level.
  [[nodiscard]] virtual std::unique_ptr<ShapeSet> generateNextLOD() = 0;
  // To be called when the last shape has been inserted, before the coordinate set goes on to the
  // next level: notes what is needed for writing.
  virtual void finish();

  // The middle and the diagonal of the box of all corners; 0 for an empty set.
  [[nodiscard]] Vec getCenter() const { return box_.getMiddle(); }
  [[nodiscard]] float getSphere() const { return box_.getDiagonal(); }

 protected:
  ShapeAttributes attributes;
  OctreeCoordSet& coordSet;
  AttributeList materials;
  AttributeList normals;
  AttributeList textureCoords;

  // The points of a shape's corners.
  [[nodiscard]] virtual std::span<const CoordId> getCoords(ShapeId shape) const = 0;
  // The number under which a corner's point is written.
  [[nodiscard]] int getWrittenIndex(CoordId coord) const { return writtenIndices_[coord]; }
  // Writes the index fields of the shapes for which `isTaken` answers true. `endCount` is what the
  // -1 behind a list of corners counts for on an output line.
  void printIndexFields(Output& out, int indent, int endCount,
                        bool (*isTaken)(std::span<const CoordId> coords)) const;

 private:
  Bounds box_;
  std::vector<int> writtenIndices_;
};

}  // namespace varimesh
