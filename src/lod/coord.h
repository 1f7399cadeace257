// Points: as records of a Coordinate3 node, and as what the clustering makes of them.
#pragma once

#include <cstdint>

#include "data/recordset.h"
#include "values/vec.h"

namespace varimesh {

// A point of a Coordinate3 node.
struct Coord : Data {
  float x = 0, y = 0, z = 0;

  Coord() = default;
  Coord(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}
  [[nodiscard]] int compareWith(const Coord& other) const;
  [[nodiscard]] std::uint64_t hash() const { return mixHash(mixHash(mixHash(0, x), y), z); }
  [[nodiscard]] Vec getPosition() const { return {x, y, z}; }
  void print(Output& out, int field) const;
};

// The number of a point within the present level of the present shape. Points are numbered in the
// depth-first order of the octree, so those of one cell have consecutive numbers.
using CoordId = std::uint32_t;
inline constexpr CoordId noCoord = ~CoordId{0};

// The number of a face or line within its set.
using ShapeId = std::uint32_t;
inline constexpr ShapeId noShape = ~ShapeId{0};

// A point of the present level of the present shape: an input point, or a collapsed octree cell
// that has the position and the written number of one of its points.
struct OctreeCoord : Coord {
  std::int16_t lod = 0;           // level at which it was collapsed; 0 for an input point
  std::int16_t selectedLod = -1;  // `lod` of the child whose place it took; -1 for an input point
  std::uint16_t depth = 0;        // below the root, which has depth 0
  std::uint16_t split = 0;        // depth of the smallest cell that also holds the point before
  bool isUsed = false;            // whether a shape of this level has it as a corner
  ShapeId shapes = noShape;       // heads the list of those whose least corner it is

  OctreeCoord() = default;
  explicit OctreeCoord(const Coord& coord) : Coord(coord) {}
};

}  // namespace varimesh
