// The faces of one IndexedFaceSet at one level of detail.
#pragma once

#include <memory>
#include <vector>

#include "shapes/face.h"
#include "shapes/faceindex.h"
#include "shapes/shapeset.h"
#include "values/lazy.h"

namespace varimesh {

class FaceSet : public ShapeSet {
 public:
  static int nolines;  // non-zero: faces that shrink to segments are dropped
  static int noquads;  // non-zero: every quadrangle is split

  // What of a set is written at a time.
  enum Mode { segments = 1, polygons = 2 };

  int polygonCount = 0;  // faces of three or four corners
  int lineCount = 0;     // faces of two
  int triCount = 0;
  int quadCount = 0;

  FaceSet(int level, OctreeCoordSet& coords, const ShapeAttributes& given, int ordering)
      : ShapeSet(level, coords, given, 4), vertexOrdering_(ordering) {}

  // Announces about how many faces are coming.
  void reserve(std::size_t faces);
  // Adds a face unless it is a point, or lies within a face that is there already. A folded
  // quadrangle becomes two segments, one that is not flat enough two triangles.
  void insert(const Face& face);
  [[nodiscard]] std::unique_ptr<ShapeSet> generateNextLOD() override;
  void finish() override {
    index_.reset();
    ShapeSet::finish();
  }
  void calcErrors(const CollapsingCell& cell, CellErrors& errors) const override;
  void print(Output& out, int indent, Mode mode) const;

 protected:
  [[nodiscard]] std::span<const CoordId> getCoords(ShapeId shape) const override {
    const Corners& corners = faces_[shape];
    return {corners.data(), static_cast<std::size_t>(countCorners(corners))};
  }

 private:
  void insertQuadrangle(const Face& face);
  void insertIfNew(const Face& face);
  void insertTriangle(const FaceSet& previous, ShapeId shape);
  void append(const Corners& corners);
  // Whether no face that is there already contains the new one.
  [[nodiscard]] bool insertOk(const Corners& corners);
  [[nodiscard]] int getVertexCountOfRepresent(ShapeId shape) const;
  [[nodiscard]] Face createRepresent(ShapeId shape) const;
  [[nodiscard]] Vertex getVertex(ShapeId shape, unsigned corner) const;
  [[nodiscard]] Vec getPosition(CoordId coord) const {
    return coordSet.getOctreeCoord(coord).getPosition();
  }

  int vertexOrdering_;
  std::vector<Corners> faces_;
  Lazy<FaceIndex> index_;  // while faces are inserted, for points with very many of them
};

}  // namespace varimesh
