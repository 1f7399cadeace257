// Finding the faces that contain a face among very many at one point.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <unordered_set>

#include "shapes/face.h"
#include "values/hash.h"

namespace varimesh {

// Answers what isEquivOrSubsetOf answers for all faces of a set at once, in constant time. It costs
// several times the memory of the faces, so sets use it only where a list of faces to be compared
// one by one has grown long: when many faces have shrunk onto few points.
class FaceIndex {
 public:
  // Whether one of the faces contains `corners`. `faces` are all those that the set has so far.
  bool contains(const Corners& corners, std::span<const Corners> faces, int vertexOrdering);

 private:
  struct Hash {
    std::size_t operator()(const Corners& key) const {
      const auto low = std::uint64_t{key[0]} << 32U | key[1];
      return mixHash(mixHash(1, low), std::uint64_t{key[2]} << 32U | key[3]);
    }
  };
  // For faces of one number of corners: all that would be contained, as far as `count` faces go.
  struct Table {
    std::unordered_set<Corners, Hash> keys;
    std::size_t count = 0;
  };

  void addSegments(const Corners& face);
  void addTriangles(const Corners& face);
  void addQuadrangles(const Corners& face);

  std::array<Table, 5> tables_;  // by number of corners
};

}  // namespace varimesh
