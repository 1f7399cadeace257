// For each point, the faces that have it as a corner.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "shapes/face.h"
#include "shapes/faceindex.h"

namespace varimesh {

// The lists stand one behind the other in the order of the points, so that those of the points of a
// cell are read as one piece.
class FaceRefs {
 public:
  // Makes the lists of all faces with at least three corners: the newest first.
  void build(std::size_t pointCount, std::span<const Corners> faces,
             std::span<const Sequence> sequences);
  [[nodiscard]] std::span<const ShapeId> getFaces(CoordId coord) const {
    return {faces_.data() + begins_[coord], begins_[coord + 1] - begins_[coord]};
  }

 private:
  std::vector<std::uint32_t> begins_;  // by point; one more for the end of the last list
  std::vector<ShapeId> faces_;
};

}  // namespace varimesh
