// A polygon in the plane of projection.

#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

namespace varimesh {

using Point2 = std::array<double, 2>;

// A closed outline on corners that are kept elsewhere. Edge i runs from corner i to the next one.
class Outline {
 public:
  explicit Outline(std::span<const Point2> corners) : corners_(corners) {}

  int size() const { return static_cast<int>(corners_.size()); }
  int next(int corner) const { return corner + 1 == size() ? 0 : corner + 1; }
  int previous(int corner) const { return corner == 0 ? size() - 1 : corner - 1; }
  const Point2& operator[](int corner) const { return corners_[static_cast<std::size_t>(corner)]; }

  // The largest coordinate, without its sign.
  double magnitude() const {
    double largest = 0;
    for (const Point2& p : corners_)
      largest = std::max({largest, std::max(p[0], -p[0]), std::max(p[1], -p[1])});
    return largest;
  }

  // Whether two edges that are not neighbours meet: as `Triangulator::checkCrossing` sees it with
  // the edge of the lower index first.
  bool edgesCross(int i, int j) const;

 private:
  std::span<const Point2> corners_;
};

}  // namespace varimesh
