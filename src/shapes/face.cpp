#include "shapes/face.h"

#include <cmath>

namespace varimesh {
namespace {

// Whether the first n corners stand in a row within the m corners of another face, forward
// (step 1) or backward (step -1), starting anywhere.
bool isRun(const Corners& corners, int n, const Corners& other, int m, int step) {
  for (int start = 0; start < m; ++start) {
    int k = 0;
    while (k < n && corners[static_cast<unsigned>(k)] ==
                        other[static_cast<unsigned>((start + step * k + m) % m)]) {
      ++k;
    }
    if (k == n) return true;
  }
  return false;
}

}  // namespace

float Face::splitCosinus = 0.98480772F;

bool isEquivOrSubsetOf(const Corners& corners, const Corners& other, int vertexOrdering) {
  const int n = countCorners(corners);
  const int m = countCorners(other);
  if (n > m) return false;
  if (n == 3 && m == 3) {
    // The usual pair: find the first corner, then compare the other two.
    for (unsigned k = 0; k < 3; ++k) {
      if (other[k] != corners[0]) continue;
      const CoordId next = other[(k + 1) % 3];
      const CoordId before = other[(k + 2) % 3];
      return (next == corners[1] && before == corners[2]) ||
             (vertexOrdering == 0 && next == corners[2] && before == corners[1]);
    }
    return false;
  }
  if (n == 2) {
    // Any two corners of a face are neighbours or ends of a diagonal.
    const auto isCorner = [&](CoordId coord) {
      return coord == other[0] || coord == other[1] || coord == other[2] || coord == other[3];
    };
    return isCorner(corners[0]) && isCorner(corners[1]);
  }
  return isRun(corners, n, other, m, 1) || (vertexOrdering == 0 && isRun(corners, n, other, m, -1));
}

Face::Face(const Vertex& a, const Vertex& b, const Vertex& c, const Vertex& d)
    : vertices{a, b, c, d} {
  for (int i = 0; i < count;) {
    if (vertices[static_cast<unsigned>(i)].coord == noCoord) {
      removeVertex(i);
    } else {
      ++i;
    }
  }
  for (int i = 0; i < count;) {
    const auto next = static_cast<unsigned>((i + 1) % count);
    if (vertices[static_cast<unsigned>(i)].coord == vertices[next].coord) {
      removeVertex(i);
    } else {
      ++i;
    }
  }
}

void Face::removeVertex(int i) {
  --count;
  for (auto k = static_cast<unsigned>(i); k < static_cast<unsigned>(count); ++k) {
    vertices[k] = vertices[k + 1];
  }
  vertices[static_cast<unsigned>(count)] = Vertex();
}

Corners Face::getCorners() const {
  return {vertices[0].coord, vertices[1].coord, vertices[2].coord, vertices[3].coord};
}

Quadrangle::Quadrangle(std::span<const Vec, 4> points) {
  for (std::size_t i = 0; i < 4; ++i) edges[i] = points[(i + 1) % 4] - points[i];
  for (std::size_t i = 0; i < 4; ++i) {
    normals[i] = calcCornerNormal(edges[(i + 3) % 4], edges[i]);
  }
  for (std::size_t i = 0; i < 4; ++i) {
    if (normals[i].isNullVector() != 0) normals[i] = normals[(i + 1) % 4];
  }
  const double a = dot(normals[0], normals[2]);
  const double b = dot(normals[1], normals[3]);
  diagonal = b > a ? 0 : 1;
  isIrregular = a < Face::splitCosinus || b < Face::splitCosinus;
}

double Quadrangle::getArea() const {
  const std::size_t first = diagonal == 1 ? 0 : 1;
  return double{getCornerArea(first)} + getCornerArea(first + 2);
}

}  // namespace varimesh
