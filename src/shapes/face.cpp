#include "shapes/face.h"

#include <cmath>

namespace varimesh {
namespace {

// An edge with its length.
struct Edge {
  Vec vector;
  float length;

  Edge(const Vec& from, const Vec& to) : vector(to - from), length(vector.getLength()) {}
};

Corner calcCorner(const Edge& incoming, const Edge& outgoing) {
  const Vec& a = outgoing.vector;
  const Vec& b = incoming.vector;
  Corner corner;
  const double product = double{outgoing.length} * incoming.length;
  if (product != 0) {
    const double cosine = dot(a, b) / product;
    const double square = 1 - cosine * cosine;
    corner.area = static_cast<float>(std::sqrt(square < 0 ? 0.0 : square) * product / 2);
  }
  const double x = double{a.y} * b.z - double{a.z} * b.y;
  const double y = double{a.z} * b.x - double{a.x} * b.z;
  const double z = double{a.x} * b.y - double{a.y} * b.x;
  const double length = std::sqrt(x * x + y * y + z * z);
  if (length != 0) {
    corner.normal = {static_cast<float>(x / length), static_cast<float>(y / length),
                     static_cast<float>(z / length)};
  }
  return corner;
}

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
  if (n == 2) {
    const auto isDiagonal = [&](unsigned k) {
      return m == 4 && corners[0] == other[k] && corners[1] == other[(k + 2) % 4];
    };
    return isRun(corners, 2, other, m, 1) || isRun(corners, 2, other, m, -1) || isDiagonal(0) ||
           isDiagonal(1) || isDiagonal(2) || isDiagonal(3);
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

std::array<Corner, 4> calcCorners(std::span<const Vec> points) {
  const std::size_t n = points.size();
  std::array<Corner, 4> corners;
  Edge incoming(points[n - 1], points[0]);
  for (std::size_t i = 0; i < n; ++i) {
    const Edge outgoing(points[i], points[(i + 1) % n]);
    corners[i] = calcCorner(incoming, outgoing);
    incoming = outgoing;
  }
  for (std::size_t i = 0; i < n; ++i) {
    if (corners[i].normal.isNullVector() != 0) corners[i].normal = corners[(i + 1) % n].normal;
  }
  return corners;
}

Quadrangle::Quadrangle(std::span<const Vec, 4> points) : corners(calcCorners(points)) {
  const double a = dot(corners[0].normal, corners[2].normal);
  const double b = dot(corners[1].normal, corners[3].normal);
  diagonal = b > a ? 0 : 1;
  isIrregular = a < Face::splitCosinus || b < Face::splitCosinus;
}

double Quadrangle::getArea() const {
  return diagonal == 1 ? double{corners[0].area} + corners[2].area
                       : double{corners[1].area} + corners[3].area;
}

}  // namespace varimesh
