// What the clustering needs to know of the faces or lines of the present level. It stands below
// them, so that the octree does not depend on what a face is.
#pragma once

#include <array>
#include <span>

#include "lod/coord.h"
#include "values/vec.h"

namespace varimesh {

// An octree cell about to be collapsed into one of its children.
struct CollapsingCell {
  // All points of the present level below the cell have numbers from first to last - 1.
  CoordId first;
  CoordId last;
  // The children that are points of the present level, in octant order. The others were made while
  // this level was made, and no shape refers to them yet.
  std::span<const CoordId> points;
  // The positions of all children, among which one is to be chosen.
  std::span<const Vec> candidates;

  [[nodiscard]] bool contains(CoordId coord) const { return coord - first < last - first; }
};

// For each candidate, the sum over all shapes at `points` of what would happen if the points of
// the cell moved there. A shape that is met at several points counts once, where it is met first.
struct CellErrors {
  std::array<long double, 8> area{};    // signed change of area
  std::array<long double, 8> volume{};  // volume swept
};

class Shape {
 public:
  virtual ~Shape() = default;
  virtual void calcErrors(const CollapsingCell& cell, CellErrors& errors) const = 0;
};

}  // namespace varimesh
