// Faces of two to four corners: segments, triangles and quadrangles.
#pragma once

#include <array>
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

// The triangle that a corner spans with its neighbours.
struct Corner {
  float area = 0;
  Vec normal;  // of length 1, or null when the corner spans nothing
};

// The corners of a face of three or four points. A null normal is replaced by that of the next
// corner.
std::array<Corner, 4> calcCorners(std::span<const Vec> points);

// How a quadrangle would be cut, and whether it must be.
struct Quadrangle {
  std::array<Corner, 4> corners;
  int diagonal;      // 0: from corner 0 to corner 2; 1: from corner 1 to corner 3
  bool isIrregular;  // not flat enough to stay a quadrangle

  explicit Quadrangle(std::span<const Vec, 4> points);
  // The sum of the areas of the two triangles of the cut.
  [[nodiscard]] double getArea() const;
};

}  // namespace varimesh
