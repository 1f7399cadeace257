// Faces of two to four corners: segments, triangles and quadrangles.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <span>

#include "lod/coord.h"
#include "values/vec.h"

namespace varimesh {

// What an index number of a shape is when the corner has no such attribute.
inline constexpr int noIndex = -1;

// A corner of a face or an end of a line: its point, and the written numbers of its attributes.
struct Vertex {
  CoordId coord = noCoord;  // noCoord: an empty slot
  int material = noIndex;
  int normal = noIndex;
  int textureCoord = noIndex;
};

// The points of a face's corners in order; slots that are not used hold noCoord.
using Corners = std::array<CoordId, 4>;

inline int countCorners(const Corners& corners) {
  return corners[2] == noCoord ? 2 : corners[3] == noCoord ? 3 : 4;
}

// Whether a face adds nothing to another: it is the same face, or a part of its outline, or one of
// its diagonals. With an ordering of 0 (unknown) a face and its reverse count as the same.
bool isEquivOrSubsetOf(const Corners& corners, const Corners& other, int vertexOrdering);

// A face while it is being made.
class Face {
 public:
  // The cosine of the angle up to which the corners of a quadrangle may be turned against each
  // other before it is split.
  static float splitCosinus;

  int count = 4;  // corners in use; the slots behind them are empty
  std::array<Vertex, 4> vertices;

  // Leaves out empty corners, and of neighbours with the same point all but the last.
  explicit Face(const Vertex& a, const Vertex& b, const Vertex& c = {}, const Vertex& d = {});
  [[nodiscard]] Corners getCorners() const;

 private:
  void removeVertex(int i);
};

// An edge with its length.
struct Edge {
  Vec vector;
  float length;

  explicit Edge(const Vec& v) : vector(v), length(v.getLength()) {}
  Edge(const Vec& from, const Vec& to) : Edge(to - from) {}
};

// The area of the triangle that a corner spans with its neighbours.
inline float calcCornerArea(const Edge& incoming, const Edge& outgoing) {
  const double product = double{outgoing.length} * incoming.length;
  if (product == 0) return 0;
  const double cosine = dot(outgoing.vector, incoming.vector) / product;
  const double square = 1 - cosine * cosine;
  return static_cast<float>(std::sqrt(square < 0 ? 0.0 : square) * product / 2);
}

// The normal of a corner, of length 1; null when the corner spans nothing.
inline Vec calcCornerNormal(const Vec& incoming, const Vec& outgoing) {
  const Vec& a = outgoing;
  const Vec& b = incoming;
  const double x = double{a.y} * b.z - double{a.z} * b.y;
  const double y = double{a.z} * b.x - double{a.x} * b.z;
  const double z = double{a.x} * b.y - double{a.y} * b.x;
  const double length = std::sqrt(x * x + y * y + z * z);
  if (length == 0) return {};
  return {static_cast<float>(x / length), static_cast<float>(y / length),
          static_cast<float>(z / length)};
}

// How a quadrangle would be cut, and whether it must be.
struct Quadrangle {
  std::array<Vec, 4> edges;    // from each corner to the next
  std::array<Vec, 4> normals;  // of the corners; a null one is replaced by that of the next corner
  int diagonal;                // 0: from corner 0 to corner 2; 1: from corner 1 to corner 3
  bool isIrregular;            // not flat enough to stay a quadrangle

  explicit Quadrangle(std::span<const Vec, 4> points);
  // The area of the triangle that a corner spans.
  [[nodiscard]] float getCornerArea(std::size_t corner) const {
    return calcCornerArea(Edge(edges[(corner + 3) % 4]), Edge(edges[corner]));
  }
  // The sum of the areas of the two triangles of the cut.
  [[nodiscard]] double getArea() const;
};

}  // namespace varimesh
