// The faces of one IndexedFaceSet at one level of detail.
#pragma once

#include <memory>
#include <vector>

#include "shapes/face.h"
#include "shapes/faceindex.h"
#include "shapes/facerefs.h"
#include "shapes/shapeset.h"

namespace varimesh {

// Faces are inserted as candidates; when the set is finished, those that lie within a face that was
// inserted before are left out. Where they come in no order at all, the others are kept in octree
// order, so that the faces round a cell lie near each other in memory: such a mesh is simplified
// almost as fast as one whose faces come in rows. The order in which they were inserted is kept
// beside them, since all results depend on it.
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
      : ShapeSet(level, coords, given), vertexOrdering_(ordering) {}

  // Announces about how many faces are coming.
  void reserve(std::size_t faces);
  // Adds a face unless it is a point, or lies within a face that was added before. A folded
  // quadrangle becomes two segments, one that is not flat enough two triangles.
  void insert(const Face& face);
  // Decides on all faces inserted; until then the set has none.
  void finish() override;
  [[nodiscard]] std::unique_ptr<ShapeSet> generateNextLOD() override;
  void calcErrors(const CollapsingCell& cell, CellErrors& errors) const override;
  void print(Output& out, int indent, Mode mode) const;

 protected:
  [[nodiscard]] std::span<const CoordId> getCoords(ShapeId shape) const override {
    const Corners& corners = faces_[shape];
    return {corners.data(), static_cast<std::size_t>(countCorners(corners))};
  }

 private:
  // Adding candidates.
  void insert(const Face& face, Sequence sequence);
  void insertQuadrangle(const Face& face, Sequence sequence);
  void insertCandidate(const Face& face, Sequence sequence);
  void insertRepresent(const FaceSet& previous, ShapeId shape, Sequence sequence,
                       const Corners& corners);

  // Choosing among them.
  void sortCandidates();
  [[nodiscard]] bool isScattered() const;
  void insertIfNew(ShapeId candidate, ShapeId firstOfSize);
  [[nodiscard]] bool isWithinBigger(const Corners& corners, Sequence sequence);
  [[nodiscard]] ShapeId findEqual(const Corners& corners, ShapeId firstOfSize);
  [[nodiscard]] FaceIndex& getIndex();
  void numberFaces();

  // Making the next level.
  void insertSegment(const FaceSet& previous, ShapeId shape, Sequence sequence);
  [[nodiscard]] Corners getRepresents(ShapeId shape) const;
  [[nodiscard]] Face createRepresent(ShapeId shape) const;
  [[nodiscard]] Vec getPosition(CoordId coord) const {
    return coordSet.getOctreeCoord(coord).getPosition();
  }

  int vertexOrdering_;
  std::vector<Corners> faces_;       // until the set is finished: the candidates
  std::vector<Sequence> sequences_;  // beside them
  FaceRefs refs_;
  std::unique_ptr<FaceIndex> index_;  // while the set is finished, for points with very many faces
};

}  // namespace varimesh
