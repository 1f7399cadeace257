// The choice of the plane onto which a polygon is projected.
//
// The rule: xy, xz and yz are candidates; two corners that coincide in a plane, or two edges that
// meet in it without being neighbours, rule it out, and so does a polygon without extent along one
// of its axes. The first candidate left is taken. The first and the last corner may coincide.
//
// The rule asks about all pairs of corners. Only verbose runs do that. Otherwise the planes are
// looked at one after the other up to the first that will do: see `EdgeSweep`.

#include <cstdio>

#include "triangulate/triangulator.h"

namespace varimesh {

namespace {

constexpr int kPlanes[3][2] = {{0, 1}, {0, 2}, {1, 2}};
constexpr const char* kPlaneNames[3] = {"xy", "xz", "yz"};

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
      if (!candidate || chosen >= 0) continue;
      if (!verbose) {
        project(u, v, projected_);
        if (!edgeSweep_.isClear(Outline(projected_))) continue;
      }
      chosen = plane;
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
  std::array<std::vector<Point2>, 3> projected;
  for (int plane = 0; plane < 3; ++plane) {
    project(kPlanes[plane][0], kPlanes[plane][1], projected[idx(plane)]);
  }
  std::array<bool, 3> clear{true, true, true};
  for (int i = 0; i < n; ++i) {
    std::printf("check point %d with", i);
    for (int j = i + 1; j < n; ++j) {
      if (i == 0 && j == n - 1) continue;
      for (std::size_t plane = 0; plane < 3; ++plane) {
        if (projected[plane][idx(i)] == projected[plane][idx(j)]) clear[plane] = false;
      }
      std::printf(" %d", j);
      for (std::size_t plane = 0; plane < 3; ++plane) {
        if (!Outline(projected[plane]).edgesCross(i, j)) continue;
        clear[plane] = false;
        std::printf("crossing: %s\n", kPlaneNames[plane]);
      }
    }
    std::printf("\n");
  }
  return clear;
}

// The polygon in a plane of two axes.
void Triangulator::project(int u, int v, std::vector<Point2>& corners) const {
  corners.clear();
  for (const Point3& p : points_) corners.push_back({p[idx(u)], p[idx(v)]});
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
