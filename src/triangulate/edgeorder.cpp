// A line sweeps over the outline and keeps the edges that it meets in their order (M. Shamos and D.
// Hoey, "Geometric intersection problems", 1976). As long as no two edges cross, only neighbours in
// that order can come close, and neighbours change at corners only. So this is all that is looked
// at: at each corner, the nearest edge on either side must be further away than `near_`.
//
// Why edges that are not neighbours in the outline are then apart: call the gap of two edges at a
// level the distance along the line. Two edges that stand side by side do so from one corner to
// another, and at both the gap was seen to be large, or is none because they end there together. It
// is linear in between, so the order never changes, and the gap of two edges at any level is the
// sum of the gaps between them in the order. It exceeds `near_` if one of these does. If all of
// these are between neighbours in the outline, the first two are those of three edges in a row,
// a-b, b-c and c-d, and at both ends of the levels that a-b and c-d share, which are among these
// corners, the gap was seen to be large: again it is linear.
//
// Why `checkCrossing` then does not answer 1, with M the largest coordinate: for edges that are at
// least 2^-10 as high as wide, an answer of 1 needs two points of them within 2^-36 M of each other
// (see the margins in edgesweep.cpp, with a ratio of up to 2^10). Let both edges be at least 2^-10
// as high as wide against the sweep line as well. If they share a level that is not outside the
// levels of the two points, their gap there is at most (1 + 2^10) 2^-36 M < 2^-25 M, which is
// `near_`. If not, the upper end of one and the lower end of the other are no further apart than
// that, and within 2^-36 M of one level, which `cornersAreApart` excludes. Rounding moves corners
// and gaps by less than 2^-45 M, within what these bounds leave.
//
// Edges that are flatter, in the plane or against the sweep line, are compared with all others.

#include "triangulate/edgeorder.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

namespace varimesh {

namespace {

constexpr double kFlat = 0x1p-10;

// Directions of the sweep, of which the one with the fewest flat edges is taken. They keep away
// from those that people draw along.
constexpr double kAngles[] = {0.1234, 0.5678, 0.9876, 1.3579, 1.8642, 2.2468, 2.6789, 2.9753};

// At most so many flat edges, and one of so many edges.
constexpr int kFewFlatEdges = 64;
constexpr int kFlatShare = 256;

// Corners on one level among which it is worth the time to look for close ones.
constexpr std::size_t kManyOnLevel = 64;

bool isFlatAlong(double wide, double high) { return std::abs(high) < kFlat * std::abs(wide); }

}  // namespace

EdgeOrder::EdgeOrder(const Outline& outline, std::span<const EdgeBox> boxes)
    : outline_(outline),
      boxes_(boxes),
      near_(std::ldexp(outline.magnitude(), -25)),
      sameLevel_(std::ldexp(outline.magnitude(), -35)) {}

EdgeOrder::Verdict EdgeOrder::examine() {
  const int n = outline_.size();
  if (!turnAwayFromEdges()) return Verdict::unknown;
  if (flatEdgesCross()) return Verdict::crossing;
  byLevel_.resize(idx(n));
  std::iota(byLevel_.begin(), byLevel_.end(), 0);
  std::sort(byLevel_.begin(), byLevel_.end(),
            [this](int a, int b) { return turned_[idx(a)][1] < turned_[idx(b)][1]; });
  if (!cornersAreApart()) return Verdict::unknown;

  where_.assign(idx(n), live_.end());
  for (const int corner : byLevel_) {
    const Verdict verdict = pass(corner);
    if (verdict != Verdict::clear) return verdict;
  }
  return Verdict::clear;
}

// Chooses a direction; false when many edges are flat in all of them.
bool EdgeOrder::turnAwayFromEdges() {
  const int few = kFewFlatEdges + outline_.size() / kFlatShare;
  double best = 0;
  int fewest = outline_.size();
  for (const double angle : kAngles) {
    const int flat = turn(angle);
    if (flat == 0) return true;
    if (flat < fewest) {
      fewest = flat;
      best = angle;
    }
  }
  return fewest <= few && turn(best) == fewest;
}

// Turns the outline so that the sweep line is level; returns the number of flat edges.
int EdgeOrder::turn(double angle) {
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  const int n = outline_.size();
  turned_.clear();
  for (int i = 0; i < n; ++i) {
    const Point2& p = outline_[i];
    turned_.push_back({c * p[0] - s * p[1], s * p[0] + c * p[1]});
  }
  int flat = 0;
  edges_.clear();
  for (int i = 0; i < n; ++i) {
    const int j = outline_.next(i);
    const bool isUpward = turned_[idx(i)][1] <= turned_[idx(j)][1];
    const Point2& low = turned_[idx(isUpward ? i : j)];
    const int top = isUpward ? j : i;
    const double wide = turned_[idx(top)][0] - low[0];
    const double high = turned_[idx(top)][1] - low[1];
    const double v = outline_[j][1] - outline_[i][1];
    // `checkCrossing` is as exact for level edges as for steep ones.
    const bool isFlat = high <= 0 || isFlatAlong(wide, high) ||
                        (v != 0 && isFlatAlong(outline_[j][0] - outline_[i][0], v));
    edges_.push_back({low[0], low[1], isFlat ? 0 : wide / high, top, isFlat});
    flat += isFlat;
  }
  return flat;
}

bool EdgeOrder::flatEdgesCross() const {
  for (const EdgeBox& flat : boxes_) {
    if (!edges_[idx(flat.edge)].isFlat) continue;
    for (const EdgeBox& other : boxes_) {
      if (other.lo[0] <= flat.hi[0] && other.hi[0] >= flat.lo[0] && other.lo[1] <= flat.hi[1] &&
          other.hi[1] >= flat.lo[1] && outline_.edgesCross(flat.edge, other.edge))
        return true;
    }
  }
  return false;
}

bool EdgeOrder::cornersAreApart() const {
  for (std::size_t k = 0; k < byLevel_.size(); ++k) {
    const Point2& p = turned_[idx(byLevel_[k])];
    for (std::size_t other = k + 1; other < byLevel_.size(); ++other) {
      const Point2& q = turned_[idx(byLevel_[other])];
      if (q[1] - p[1] > sameLevel_) break;
      if (std::abs(q[0] - p[0]) <= near_ || other - k > kManyOnLevel) return false;
    }
  }
  return true;
}

// Moves the sweep line to a corner and over it.
EdgeOrder::Verdict EdgeOrder::pass(int corner) {
  level_ = turned_[idx(corner)][1];
  const int incident[] = {outline_.previous(corner), corner};
  int ending[2];
  int beginning[2];
  int endings = 0;
  int beginnings = 0;
  for (const int edge : incident) {
    const Sloped& s = edges_[idx(edge)];
    if (s.isFlat) continue;
    if (s.top == corner) {
      ending[endings++] = edge;
    } else {
      beginning[beginnings++] = edge;
    }
  }
  if (endings == 1 && beginnings == 1) {
    const LiveEdges::iterator place = where_[idx(ending[0])];
    place->edge = beginning[0];
    where_[idx(beginning[0])] = place;
    return lookBeside(corner, place);
  }
  for (int k = 0; k < endings; ++k) {
    const LiveEdges::iterator place = where_[idx(ending[k])];
    const Verdict verdict = lookBeside(corner, place);
    if (verdict != Verdict::clear) return verdict;
    live_.erase(place);
  }
  for (int k = 0; k < beginnings; ++k) {
    LiveEdges::iterator after = live_.lower_bound(turned_[idx(corner)][0]);
    if (k == 1) {
      after = where_[idx(beginning[0])];
      if (edges_[idx(beginning[1])].slope > edges_[idx(beginning[0])].slope) ++after;
    }
    where_[idx(beginning[k])] = live_.emplace_hint(after, Live{beginning[k]});
  }
  for (int k = 0; k < beginnings; ++k) {
    const Verdict verdict = lookBeside(corner, where_[idx(beginning[k])]);
    if (verdict != Verdict::clear) return verdict;
  }
  return Verdict::clear;
}

// Looks at both neighbours of an edge on the level of the corner at which it ends or begins.
EdgeOrder::Verdict EdgeOrder::lookBeside(int corner, LiveEdges::iterator place) const {
  const double x = turned_[idx(corner)][0];
  if (place != live_.begin()) {
    const int left = std::prev(place)->edge;
    if (!isAt(corner, left) && !(x - position(left) > near_)) return judge(corner, left);
  }
  if (std::next(place) != live_.end()) {
    const int right = std::next(place)->edge;
    if (!isAt(corner, right) && !(position(right) - x > near_)) return judge(corner, right);
  }
  return Verdict::clear;
}

// A corner is close to an edge, or even beyond it.
EdgeOrder::Verdict EdgeOrder::judge(int corner, int edge) const {
  return outline_.edgesCross(outline_.previous(corner), edge) || outline_.edgesCross(corner, edge)
             ? Verdict::crossing
             : Verdict::unknown;
}

bool EdgeOrder::isAt(int corner, int edge) const {
  return edge == corner || edge == outline_.previous(corner);
}

}  // namespace varimesh
