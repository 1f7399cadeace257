// The choice of the plane onto which a polygon is projected.
//
// The rule: xy, xz and yz are candidates; two corners that coincide in a plane, or two edges that
// meet in it without being neighbours, rule it out, and so does a polygon without extent along one
// of its axes. The first candidate left is taken. The first and the last corner may coincide.
//
// The rule asks about all pairs of corners. Only verbose runs do that. Otherwise the planes are
// looked at one after the other up to the first that will do, and large polygons are swept: see
// `sweepIsClear`.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <numeric>
#include <utility>

#include "triangulate/triangulator.h"

namespace varimesh {

namespace {

constexpr int kPlanes[3][2] = {{0, 1}, {0, 2}, {1, 2}};
constexpr const char* kPlaneNames[3] = {"xy", "xz", "yz"};

// Below this number of corners comparing all pairs is faster than sorting them.
constexpr std::size_t kSweepFrom = 48;

// The first and the last corner, the first and the last edge.
bool isClosingPair(int i, int j, int n) { return i == 0 && j == n - 1; }

}  // namespace

int Triangulator::checkForXYZ() {
  if (points_.size() < 4) return 1;
  if (useX_ == -1) {
    std::array<bool, 3> extends{};
    for (const Point3& p : points_) {
      for (std::size_t axis = 0; axis < 3; ++axis) extends[axis] |= p[axis] != points_[0][axis];
    }

    std::array<bool, 3> clear{true, true, true};
    if (verbose) clear = comparePairsAloud();
    int chosen = -1;
    for (int plane = 0; plane < 3; ++plane) {
      const auto [u, v] = kPlanes[plane];
      bool& candidate = clear[idx(plane)];
      candidate = candidate && extends[idx(u)] && extends[idx(v)];
      if (candidate && chosen < 0 && (verbose || planeIsClear(u, v))) chosen = plane;
    }
    useX_ = chosen == 0 || chosen == 1;
    useY_ = chosen == 0 || chosen == 2;
    useZ_ = chosen == 1 || chosen == 2;
    if (verbose) {
      std::printf("tri: isok: x%d,y%d,z%d xy%d,xz%d,yz%d\n", useX_, useY_, useZ_, clear[0],
                  clear[1], clear[2]);
      std::printf("tri: isok: x%d,y%d,z%d\n", useX_, useY_, useZ_);
    }
  }
  return useX_ + useY_ + useZ_ > 1;
}

// Compares all pairs in all planes and reports on each; returns which planes are left.
std::array<bool, 3> Triangulator::comparePairsAloud() const {
  const int n = static_cast<int>(points_.size());
  std::array<bool, 3> clear{true, true, true};
  for (int i = 0; i < n; ++i) {
    std::printf("check point %d with", i);
    for (int j = i + 1; j < n; ++j) {
      if (isClosingPair(i, j, n)) continue;
      const Point3& p = points_[idx(i)];
      const Point3& q = points_[idx(j)];
      for (int plane = 0; plane < 3; ++plane) {
        const auto [u, v] = kPlanes[plane];
        if (p[idx(u)] == q[idx(u)] && p[idx(v)] == q[idx(v)]) clear[idx(plane)] = false;
      }
      std::printf(" %d", j);
      if (j == i + 1) continue;
      for (int plane = 0; plane < 3; ++plane) {
        if (!edgesCross(i, j, kPlanes[plane][0], kPlanes[plane][1])) continue;
        clear[idx(plane)] = false;
        std::printf("crossing: %s\n", kPlaneNames[plane]);
      }
    }
    std::printf("\n");
  }
  return clear;
}

bool Triangulator::planeIsClear(int u, int v) {
  if (points_.size() < kSweepFrom || !isSinglePrecision()) return pairsAreClear(u, v);
  return !pointsCoincide(u, v) && sweepIsClear(u, v);
}

bool Triangulator::pairsAreClear(int u, int v) const {
  const int n = static_cast<int>(points_.size());
  for (int i = 0; i < n; ++i) {
    const Point3& p = points_[idx(i)];
    for (int j = i + 1; j < n; ++j) {
      if (isClosingPair(i, j, n)) continue;
      const Point3& q = points_[idx(j)];
      if (p[idx(u)] == q[idx(u)] && p[idx(v)] == q[idx(v)]) return false;
      if (j > i + 1 && edgesCross(i, j, u, v)) return false;
    }
  }
  return true;
}

bool Triangulator::pointsCoincide(int u, int v) {
  const int n = static_cast<int>(points_.size());
  std::vector<int>& order = order_;
  order.resize(points_.size());
  std::iota(order.begin(), order.end(), 0);
  const auto key = [&](int i) {
    return std::pair(points_[idx(i)][idx(u)], points_[idx(i)][idx(v)]);
  };
  std::sort(order.begin(), order.end(), [&](int i, int j) { return key(i) < key(j); });
  for (std::size_t k = 1; k < order.size(); ++k) {
    if (key(order[k - 1]) != key(order[k])) continue;
    // Of three corners in one place at least one pair of neighbours in this order is not exempt.
    const auto [first, last] = std::minmax(order[k - 1], order[k]);
    if (!isClosingPair(first, last, n)) return true;
  }
  return false;
}

// Calls `checkCrossing` for those pairs of edges only whose boxes overlap, found by a sweep over
// the boxes.
//
// Why no crossing is missed: let M be the largest coordinate, e = 2^-53, and take the pair a-b, c-d
// with dv1 != 0 and r = du1/dv1. An answer of 1 needs a computed t in [0,1], whatever rounding did
// to it, so P = c + t(d - c) is a point of c-d; and a computed s in [0,1], which puts the height of
// P between those of a and b, give or take 12 e M. By t = N/q, P then lies beside the point of line
// a-b at its height by the rounding errors of N and q only, less than 64 e M (1 + |r|). With dv1 =
// 0 the axes change places and the ratio is 0. So a box widened by 2^-45 M across and 2^-45 M (1 +
// |r|) along u meets that of c-d. The argument needs that nothing overflows or vanishes, which
// holds for single precision coordinates, and that a and b differ, which `pointsCoincide` has made
// sure of before.
bool Triangulator::sweepIsClear(int u, int v) {
  const int n = static_cast<int>(points_.size());
  double largest = 0;
  for (const Point3& p : points_) {
    largest = std::max({largest, std::abs(p[idx(u)]), std::abs(p[idx(v)])});
  }
  const double margin = std::ldexp(largest, -45);

  std::vector<Box>& boxes = boxes_;
  boxes.clear();
  double length[2] = {0, 0};
  for (int i = 0; i < n; ++i) {
    const Point3& a = points_[idx(i)];
    const Point3& b = points_[idx(i + 1 == n ? 0 : i + 1)];
    const auto [ulo, uhi] = std::minmax(a[idx(u)], b[idx(u)]);
    const auto [vlo, vhi] = std::minmax(a[idx(v)], b[idx(v)]);
    const double ratio = vlo == vhi ? 0 : (uhi - ulo) / (vhi - vlo);
    const double wide = margin * (1 + ratio);
    boxes.push_back({{ulo - wide, vlo - margin}, {uhi + wide, vhi + margin}, i});
    length[0] += uhi - ulo;
    length[1] += vhi - vlo;
  }

  // Sweep along the axis on which the edges are short for the extent of the polygon, so that few
  // boxes are open at a time.
  double extent[2];
  for (int axis = 0; axis < 2; ++axis) {
    const auto [lo, hi] =
        std::minmax_element(boxes.begin(), boxes.end(),
                            [&](const Box& x, const Box& y) { return x.lo[axis] < y.lo[axis]; });
    extent[axis] = hi->lo[axis] - lo->lo[axis];
  }
  const int along = length[0] * extent[1] <= length[1] * extent[0] ? 0 : 1;
  const int across = 1 - along;

  std::sort(boxes.begin(), boxes.end(),
            [&](const Box& x, const Box& y) { return x.lo[along] < y.lo[along]; });
  std::vector<Box>& open = openBoxes_;
  open.clear();
  for (const Box& box : boxes) {
    std::size_t kept = 0;
    for (const Box& other : open) {
      if (other.hi[along] < box.lo[along]) continue;
      open[kept++] = other;
      if (other.hi[across] < box.lo[across] || other.lo[across] > box.hi[across]) continue;
      const auto [i, j] = std::minmax(box.edge, other.edge);
      if (j > i + 1 && !isClosingPair(i, j, n) && edgesCross(i, j, u, v)) return false;
    }
    open.resize(kept);
    open.push_back(box);
  }
  return true;
}

bool Triangulator::edgesCross(int i, int j, int u, int v) const {
  const Point3& a = points_[idx(i)];
  const Point3& b = points_[idx(i + 1)];
  const Point3& c = points_[idx(j)];
  const Point3& d = points_[idx(j) + 1 == points_.size() ? 0 : idx(j) + 1];
  const std::size_t uu = idx(u);
  const std::size_t vv = idx(v);
  return checkCrossing(a[uu], a[vv], b[uu], b[vv], c[uu], c[vv], d[uu], d[vv]) == 1;
}

// Not true of NaN and infinity either.
bool Triangulator::isSinglePrecision() const {
  for (const Point3& p : points_) {
    for (const double c : p) {
      if (!(std::abs(c) <= std::numeric_limits<float>::max()) ||
          static_cast<double>(static_cast<float>(c)) != c)
        return false;
    }
  }
  return true;
}

int Triangulator::checkCrossing(double au, double av, double bu, double bv, double cu, double cv,
                                double du, double dv) {
  const double du1 = bu - au;
  const double dv1 = bv - av;
  const double du2 = du - cu;
  const double dv2 = dv - cv;
  double s;
  if (dv1 == 0) {
    if (du1 == 0) return 1;
    const double q = dv2 - du2 * dv1 / du1;
    if (q == 0) return 2;
    const double t = ((cu - au) * (dv1 / du1) + (av - cv)) / q;
    if (t < 0 || t > 1) return 0;
    s = (t * du2 + cu - au) / du1;
  } else {
    const double q = du2 - dv2 * du1 / dv1;
    if (q == 0) return 2;
    const double t = ((cv - av) * (du1 / dv1) + (au - cu)) / q;
    if (t < 0 || t > 1) return 0;
    s = (t * dv2 + cv - av) / dv1;
  }
  return 0 <= s && s <= 1 ? 1 : 0;
}

}  // namespace varimesh
