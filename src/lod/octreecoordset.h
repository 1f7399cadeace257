// The clustering octree over the points of a Coordinate3 node.
//
// The octree is not kept as a tree. Its points are put into the order in which a depth-first walk
// in octant order meets them; beside each point stands the depth of the smallest cell that it
// shares with the point before. That says all there is to know: points next to each other share a
// cell of a depth exactly when no smaller number stands between them, and the cells that would
// have children are those. Collapsing the deepest layer of cells is one pass over an array.
//
// Shapes take turns: each makes its own levels out of those points of the node that it uses, so
// that its cost does not depend on the others. The cells, however, are those of all points of the
// node, used or not: a point that stands close to an unused one stands as deep.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "lod/coordset.h"
#include "lod/shape.h"

namespace varimesh {

class OctreeCoordSet : public CoordSet {
 public:
  // How much each measure weighs when a cell's representative is chosen; 0 or less: not at all.
  static float weightAlgErrorArea;     // the change of face area
  static float weightAlgErrorVolume;   // the volume swept by the faces
  static float weightAlgWeightedMean;  // the distance from the mean of the cell's points

  // Starts a shape with the points at those input positions (others, such as -1, are passed over).
  // Only with `withLevels` may levels be made afterwards.
  void beginShape(std::span<const int> positions, bool withLevels);
  // The present shape's point at a position that was given to beginShape.
  [[nodiscard]] CoordId getCoord(int position) const { return localIds_[getIndex(position)]; }
  [[nodiscard]] const OctreeCoord& getOctreeCoord(CoordId coord) const { return coords_[coord]; }
  [[nodiscard]] std::span<const OctreeCoord> getOctreeCoords() const { return coords_; }
  // Ends the shape: frees what belongs to it alone.
  void endShape();

  // Whether the shape was started for levels: only then are its points in octree order.
  [[nodiscard]] bool isWithLevels() const { return isWithLevels_; }

  // Notes that a shape of the present level has the point as a corner.
  void use(CoordId coord) {
    OctreeCoord& point = coords_[coord];
    usedCount_ += point.isUsed ? 0 : 1;
    point.isUsed = true;
  }
  // Puts a shape at the head of a point's list, and returns the one that was there.
  ShapeId setHead(CoordId coord, ShapeId shape) {
    return std::exchange(coords_[coord].shapes, shape);
  }

  // Level 0 again, with the shapes that are registered now.
  void resetLODs() { currentLOD = 0; }
  // How many points the shapes of the present level use.
  [[nodiscard]] int getCountUsed() const { return usedCount_; }
  // Makes the next level: collapses at least the deepest layer of cells and at least the share
  // minDiff of the used points. Afterwards the points are those of the new level, without shapes.
  // Does nothing when at most one point is used.
  void generateNextLOD(const Shape& shapes);
  // The distance from which the level just made may be shown.
  [[nodiscard]] float getRange() const;

  // The point of the new level that stands for a used point of the level before.
  [[nodiscard]] CoordId getRepresent(CoordId previous) const { return represents_[previous]; }
  // The point of the level before whose data the representative of `previous` carries, as far as
  // points as old as `previous` can tell; noCoord when that is none of that level.
  [[nodiscard]] CoordId getSelected(CoordId previous) const;

 private:
  // A node of the octree while a level is made: a point of the level before, or a cell collapsed.
  struct Cell {
    CoordId first, last;      // the points of the level before that it holds, last excluded
    CoordId selected;         // the one whose place it takes
    std::uint32_t usedCount;  // used points that it holds
    std::uint16_t depth, split;
    std::int16_t lod, selectedLod;
  };
  struct OctreePoint {
    float x, y, z;
    Reference reference;
  };
  using Errors = std::array<float, 8>;

  // Putting the points of the node into octree order.
  void orderPoints();
  void insertOctree(std::span<OctreePoint> points, std::size_t offset, const Bounds& box, int depth,
                    std::vector<OctreePoint>& scratch);
  [[nodiscard]] std::uint16_t getPointDepth(std::size_t rank) const;
  [[nodiscard]] std::uint16_t getSplit(std::size_t previousRank, std::size_t rank) const;
  void sortUsedPoints();

  // Making a level.
  [[nodiscard]] int calcOctreeDepthOfUsedPoints() const;
  void collectCells();
  void collapseLayer(int depth, const Shape& shapes);
  void generateOctreeLODs(std::size_t first, std::size_t last, int depth, int layer, int& left,
                          int target, const Shape& shapes);
  void packCells();
  [[nodiscard]] int countRemoved(int depth) const;
  [[nodiscard]] Cell collapse(std::span<const Cell> children, const Shape& shapes) const;
  [[nodiscard]] std::size_t selectOctreeRepresent(std::span<const Cell> children,
                                                  const Shape& shapes) const;
  [[nodiscard]] Errors calcWeightedMeanErrors(std::span<const Cell> children) const;
  static void normalizeErrors(std::span<float> errors);
  void takeCells();

  // The node's points in octree order, made when the first shape needs them.
  std::vector<Reference> order_;
  std::vector<std::uint16_t> splits_;  // beside order_: see OctreeCoord::split
  std::vector<std::uint32_t> ranks_;   // by reference: the place in order_; made when needed

  // The present shape.
  std::vector<CoordId> localIds_;      // by reference; noCoord for points that it does not use
  std::vector<Reference> usedPoints_;  // those that have a local id
  std::vector<OctreeCoord> coords_;    // the points of the present level
  bool isWithLevels_ = false;
  int usedCount_ = 0;
  int rootDepth_ = 0;  // of the octree of used points: 1 when only the root is left

  // The last level made.
  std::vector<OctreeCoord> previousCoords_;
  std::vector<CoordId> represents_;  // by point of the level before
  std::vector<CoordId> selecteds_;   // by point of the new level
  std::vector<Cell> cells_;
};

}  // namespace varimesh
