#include "triangulate/edgesweep.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>

namespace varimesh {

namespace {

// What a sweep may look at, for each edge, before the order of the edges is tried: what that costs.
constexpr std::size_t kLooksPerEdge = 32;

// Below this number of corners comparing all pairs is faster than sorting them.
constexpr int kSweepFrom = 48;

bool pairsAreClear(const Outline& outline) {
  const int n = outline.size();
  for (int i = 0; i < n; ++i) {
    for (int j = i + 1; j < n; ++j) {
      if (i == 0 && j == n - 1) continue;
      if (outline[i] == outline[j] || outline.edgesCross(i, j)) return false;
    }
  }
  return true;
}

// Not true of NaN and infinity either.
bool isSinglePrecision(const Outline& outline) {
  for (int i = 0; i < outline.size(); ++i) {
    for (const double c : outline[i]) {
      if (!(std::abs(c) <= std::numeric_limits<float>::max()) ||
          static_cast<double>(static_cast<float>(c)) != c)
        return false;
    }
  }
  return true;
}

}  // namespace

bool EdgeSweep::isClear(const Outline& outline) {
  if (outline.size() < kSweepFrom || !isSinglePrecision(outline)) return pairsAreClear(outline);
  return !cornersCoincide(outline) && edgesAreClear(outline);
}

bool EdgeSweep::cornersCoincide(const Outline& outline) {
  const int n = outline.size();
  sorted_.resize(static_cast<std::size_t>(n));
  std::iota(sorted_.begin(), sorted_.end(), 0);
  std::sort(sorted_.begin(), sorted_.end(), [&](int i, int j) { return outline[i] < outline[j]; });
  for (std::size_t k = 1; k < sorted_.size(); ++k) {
    if (outline[sorted_[k - 1]] != outline[sorted_[k]]) continue;
    // Of three corners in one place at least one pair of neighbours in this order is not exempt.
    const auto [first, last] = std::minmax(sorted_[k - 1], sorted_[k]);
    if (first != 0 || last != n - 1) return true;
  }
  return false;
}

// Calls `checkCrossing` for those pairs of edges only whose boxes overlap, found by a sweep over
// the boxes. Where too many boxes are open at a time, as with long edges that run askew, the order
// of the edges mostly has the answer; where it has none, the sweep goes on.
//
// Why no crossing is missed: let M be the largest coordinate, e = 2^-53, and take the pair a-b, c-d
// with dv1 != 0 and r = du1/dv1. An answer of 1 needs a computed t in [0,1], whatever rounding did
// to it, so P = c + t(d - c) is a point of c-d; and a computed s in [0,1], which puts the height of
// P between those of a and b, give or take 12 e M. By t = N/q, P then lies beside the point of line
// a-b at its height by the rounding errors of N and q only, less than 64 e M (1 + |r|). With dv1 =
// 0 the axes change places and the ratio is 0. So a box widened by 2^-45 M across and 2^-45 M (1 +
// |r|) along u meets that of c-d. The argument needs that nothing overflows or vanishes, which
// holds for single precision coordinates, and that a and b differ, which `cornersCoincide` has made
// sure of before.
bool EdgeSweep::edgesAreClear(const Outline& outline) {
  makeBoxes(outline);
  const std::size_t along = static_cast<std::size_t>(chooseAxis(outline));
  const std::size_t across = 1 - along;
  std::sort(boxes_.begin(), boxes_.end(),
            [along](const EdgeBox& x, const EdgeBox& y) { return x.lo[along] < y.lo[along]; });

  std::size_t looks = 0;
  bool isOrderTried = false;
  open_.clear();
  for (const EdgeBox& box : boxes_) {
    looks += open_.size();
    if (looks > kLooksPerEdge * boxes_.size() && !isOrderTried) {
      const EdgeOrder::Verdict verdict = EdgeOrder(outline, boxes_).examine();
      if (verdict != EdgeOrder::Verdict::unknown) return verdict == EdgeOrder::Verdict::clear;
      isOrderTried = true;
    }
    std::size_t kept = 0;
    for (const EdgeBox& other : open_) {
      if (other.hi[along] < box.lo[along]) continue;
      open_[kept++] = other;
      if (other.hi[across] < box.lo[across] || other.lo[across] > box.hi[across]) continue;
      if (outline.edgesCross(box.edge, other.edge)) return false;
    }
    open_.resize(kept);
    open_.push_back(box);
  }
  return true;
}

void EdgeSweep::makeBoxes(const Outline& outline) {
  const double margin = std::ldexp(outline.magnitude(), -45);
  boxes_.clear();
  for (int i = 0; i < outline.size(); ++i) {
    const Point2& a = outline[i];
    const Point2& b = outline[outline.next(i)];
    const auto [ulo, uhi] = std::minmax(a[0], b[0]);
    const auto [vlo, vhi] = std::minmax(a[1], b[1]);
    const double ratio = vlo == vhi ? 0 : (uhi - ulo) / (vhi - vlo);
    const double wide = margin * (1 + ratio);
    boxes_.push_back({{ulo - wide, vlo - margin}, {uhi + wide, vhi + margin}, i});
  }
}

// The axis on which the edges are short for the extent of the polygon, so that few boxes are open
// at a time.
int EdgeSweep::chooseAxis(const Outline& outline) const {
  double length[2] = {0, 0};
  double extent[2];
  for (std::size_t axis = 0; axis < 2; ++axis) {
    for (int i = 0; i < outline.size(); ++i) {
      length[axis] += std::abs(outline[outline.next(i)][axis] - outline[i][axis]);
    }
    const auto [lo, hi] = std::minmax_element(
        boxes_.begin(), boxes_.end(),
        [axis](const EdgeBox& x, const EdgeBox& y) { return x.lo[axis] < y.lo[axis]; });
    extent[axis] = hi->lo[axis] - lo->lo[axis];
  }
  return length[0] * extent[1] <= length[1] * extent[0] ? 0 : 1;
}

}  // namespace varimesh
