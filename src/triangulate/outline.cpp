#include "triangulate/outline.h"

#include "triangulate/triangulator.h"

namespace varimesh {

bool Outline::edgesCross(int i, int j) const {
  const auto [first, second] = std::minmax(i, j);
  if (second <= first + 1 || next(second) == first) return false;
  const Point2& a = (*this)[first];
  const Point2& b = (*this)[next(first)];
  const Point2& c = (*this)[second];
  const Point2& d = (*this)[next(second)];
  return Triangulator::checkCrossing(a[0], a[1], b[0], b[1], c[0], c[1], d[0], d[1]) == 1;
}

}  // namespace varimesh
