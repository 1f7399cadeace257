// What the sets of faces and of lines of one level have in common.
#pragma once

#include <array>
#include <memory>
#include <span>
#include <utility>
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

  AttributeList(bool isPresent, int binding)
      : per_(!isPresent                    ? Per::none
             : binding <= PER_FACE_INDEXED ? Per::shape
                                           : Per::corner) {}

  [[nodiscard]] Per getPer() const { return per_; }
  void append(std::span<const Vertex> vertices, int Vertex::*attribute) {
    if (per_ == Per::none) return;
    if (per_ == Per::shape) return perShape_.push_back(vertices[0].*attribute);
    Numbers numbers{};
    for (unsigned i = 0; i < vertices.size(); ++i) numbers[i] = vertices[i].*attribute;
    perCorner_.push_back(numbers);
  }
  // Takes over what another list has for a shape with the same corners.
  void append(const AttributeList& other, ShapeId shape) {
    if (per_ == Per::shape) perShape_.push_back(other.perShape_[shape]);
    if (per_ == Per::corner) perCorner_.push_back(other.perCorner_[shape]);
  }
  // Takes over what another list has for two corners of a shape.
  void append(const AttributeList& other, ShapeId shape, std::array<unsigned, 2> corners) {
    if (per_ == Per::shape) perShape_.push_back(other.perShape_[shape]);
    if (per_ != Per::corner) return;
    const Numbers& numbers = other.perCorner_[shape];
    perCorner_.push_back({numbers[corners[0]], numbers[corners[1]], noIndex, noIndex});
  }
  // Copies what it has for one shape to the place of another.
  void move(ShapeId from, ShapeId to) {
    if (per_ == Per::shape) perShape_[to] = perShape_[from];
    if (per_ == Per::corner) perCorner_[to] = perCorner_[from];
  }
  void reserve(std::size_t shapes) {
    if (per_ == Per::shape) perShape_.reserve(shapes);
    if (per_ == Per::corner) perCorner_.reserve(shapes);
  }
  void resize(std::size_t shapes) {
    if (per_ == Per::shape) perShape_.resize(shapes);
    if (per_ == Per::corner) perCorner_.resize(shapes);
  }
  [[nodiscard]] int get(ShapeId shape, unsigned corner) const {
    if (per_ == Per::none) return noIndex;
    return per_ == Per::shape ? perShape_[shape] : perCorner_[shape][corner];
  }

 private:
  using Numbers = std::array<int, 4>;  // as many as a shape has corners at most

  Per per_;
  std::vector<int> perShape_;
  std::vector<Numbers> perCorner_;
};

// All attributes of the shapes of a set.
struct AttributeLists {
  AttributeList materials;
  AttributeList normals;
  AttributeList textureCoords;

  explicit AttributeLists(const ShapeAttributes& given)
      : materials(given.hasMaterials, given.materialBinding),
        normals(given.hasNormals, given.normalBinding),
        textureCoords(given.hasTextureCoords, PER_VERTEX_INDEXED) {}

  void append(std::span<const Vertex> vertices) {
    materials.append(vertices, &Vertex::material);
    normals.append(vertices, &Vertex::normal);
    textureCoords.append(vertices, &Vertex::textureCoord);
  }
  void append(const AttributeLists& other, ShapeId shape) {
    materials.append(other.materials, shape);
    normals.append(other.normals, shape);
    textureCoords.append(other.textureCoords, shape);
  }
  void append(const AttributeLists& other, ShapeId shape, std::array<unsigned, 2> corners) {
    materials.append(other.materials, shape, corners);
    normals.append(other.normals, shape, corners);
    textureCoords.append(other.textureCoords, shape, corners);
  }
  void move(ShapeId from, ShapeId to) {
    materials.move(from, to);
    normals.move(from, to);
    textureCoords.move(from, to);
  }
  void reserve(std::size_t shapes) {
    materials.reserve(shapes);
    normals.reserve(shapes);
    textureCoords.reserve(shapes);
  }
  void resize(std::size_t shapes) {
    materials.resize(shapes);
    normals.resize(shapes);
    textureCoords.resize(shapes);
  }
  [[nodiscard]] Vertex getVertex(CoordId coord, ShapeId shape, unsigned corner) const {
    return {coord, materials.get(shape, corner), normals.get(shape, corner),
            textureCoords.get(shape, corner)};
  }
};

// The faces or lines of one shape at one level of detail.
class ShapeSet : public Shape {
 public:
  int lod;           // 0 for the input geometry
  int setCount = 0;  // shapes in the set
  float range = 0;   // distance from which the next level may be shown; 0 until known

  ShapeSet(int level, OctreeCoordSet& coords, const ShapeAttributes& given)
      : lod(level), attributes(given), coordSet(coords), numbers(given) {}

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
  AttributeLists numbers;
  // The shapes in the order in which they are written; empty when that is their own order.
  std::vector<ShapeId> order;

  // Equal shapes have the same least corner, so those of each least corner form a list.
  void reserveList(std::size_t shapes) { nextInList_.reserve(shapes); }
  // Gives the next level what is of no use any longer, since small shapes spend much of their time
  // in getting memory.
  void handOver(ShapeSet& next) {
    next.nextInList_ = std::move(nextInList_);
    next.nextInList_.clear();
  }
  void linkNewest(CoordId leastCorner) {
    nextInList_.push_back(coordSet.setHead(leastCorner, static_cast<ShapeId>(nextInList_.size())));
  }
  // Calls visit(shape) for the shapes with that least corner, newest first, until it answers false.
  template <class Visit>
  void forEachInList(CoordId leastCorner, Visit visit) const {
    ShapeId shape = coordSet.getOctreeCoord(leastCorner).shapes;
    while (shape != noShape && visit(shape)) shape = nextInList_[shape];
  }
  // The length from which lists of shapes are no longer compared one by one.
  static constexpr std::size_t longList = 64;

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
  std::vector<ShapeId> nextInList_;  // by shape
  std::vector<int> writtenIndices_;
};

}  // namespace varimesh
