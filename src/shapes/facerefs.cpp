#include "shapes/facerefs.h"

#include <algorithm>

namespace varimesh {

void FaceRefs::build(std::size_t pointCount, std::span<const Corners> faces,
                     std::span<const Sequence> sequences) {
  begins_.assign(pointCount + 1, 0);
  const auto forEachCorner = [&](const Corners& corners, auto visit) {
    if (corners[2] == noCoord) return;
    for (unsigned i = 0; i < 3; ++i) visit(corners[i]);
    if (corners[3] != noCoord) visit(corners[3]);
  };
  for (const Corners& corners : faces) {
    forEachCorner(corners, [&](CoordId coord) { ++begins_[coord]; });
  }
  std::uint32_t size = 0;
  for (std::uint32_t& begin : begins_) begin = size += begin;

  // From the back of each list: whatever comes first is the oldest.
  faces_.resize(size);
  for (ShapeId face = 0; face < faces.size(); ++face) {
    forEachCorner(faces[face], [&](CoordId coord) { faces_[--begins_[coord]] = face; });
  }
  if (std::is_sorted(sequences.begin(), sequences.end())) return;
  const auto isNewer = [&](ShapeId a, ShapeId b) { return sequences[a] > sequences[b]; };
  for (std::size_t i = 0; i < pointCount; ++i) {
    const auto begin = faces_.begin() + begins_[i];
    const auto end = faces_.begin() + begins_[i + 1];
    // Most lists are short.
    if (end - begin > 16) {
      std::sort(begin, end, isNewer);
      continue;
    }
    for (auto at = begin; at != end; ++at) {
      std::rotate(std::upper_bound(begin, at, *at, isNewer), at, at + 1);
    }
  }
}

}  // namespace varimesh
