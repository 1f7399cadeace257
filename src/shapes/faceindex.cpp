#include "shapes/faceindex.h"

#include <algorithm>
#include <utility>

namespace varimesh {
namespace {

// In the last slot of a triangle that lies within a quadrangle. Such a triangle counts only from
// the corner from which it runs along the quadrangle; one that stands for itself, from any corner.
constexpr CoordId withinQuadrangle = noCoord - 1;

Corners makeSegment(CoordId a, CoordId b) {
  return {std::min(a, b), std::max(a, b), noCoord, noCoord};
}

// The same triangle, started from its smallest corner.
Corners rotate(CoordId a, CoordId b, CoordId c) {
  if (b < a && b < c) return {b, c, a, noCoord};
  if (c < a && c < b) return {c, a, b, noCoord};
  return {a, b, c, noCoord};
}

Corners reverse(Corners corners) {
  std::reverse(corners.begin(), corners.begin() + countCorners(corners));
  return corners;
}

}  // namespace

void FaceIndex::addSegments(const Corners& face) {
  auto& keys = tables_[2].keys;
  const auto n = static_cast<unsigned>(countCorners(face));
  for (unsigned i = 0; i < n; ++i) keys.insert(makeSegment(face[i], face[(i + 1) % n]));
  if (n == 4) {
    keys.insert(makeSegment(face[0], face[2]));
    keys.insert(makeSegment(face[1], face[3]));
  }
}

void FaceIndex::addTriangles(const Corners& face) {
  auto& keys = tables_[3].keys;
  const int n = countCorners(face);
  if (n == 3) keys.insert(rotate(face[0], face[1], face[2]));
  if (n != 4) return;
  for (unsigned i = 0; i < 4; ++i) {
    keys.insert({face[i], face[(i + 1) % 4], face[(i + 2) % 4], withinQuadrangle});
  }
}

void FaceIndex::addQuadrangles(const Corners& face) {
  if (countCorners(face) != 4) return;
  for (unsigned i = 0; i < 4; ++i) {
    tables_[4].keys.insert({face[i], face[(i + 1) % 4], face[(i + 2) % 4], face[(i + 3) % 4]});
  }
}

bool FaceIndex::contains(const Corners& corners, std::span<const Corners> faces,
                         int vertexOrdering) {
  const int n = countCorners(corners);
  Table& table = tables_[static_cast<unsigned>(n)];
  for (; table.count < faces.size(); ++table.count) {
    const Corners& face = faces[table.count];
    if (n == 2) addSegments(face);
    if (n == 3) addTriangles(face);
    if (n == 4) addQuadrangles(face);
  }
  if (n == 2) return table.keys.contains(makeSegment(corners[0], corners[1]));
  const auto isThere = [&](const Corners& c) {
    if (n == 4) return table.keys.contains(c);
    return table.keys.contains(rotate(c[0], c[1], c[2])) ||
           table.keys.contains({c[0], c[1], c[2], withinQuadrangle});
  };
  return isThere(corners) || (vertexOrdering == 0 && isThere(reverse(corners)));
}

}  // namespace varimesh
