// The trapezoidation: the segments of the outline are threaded one by one, in random order, through
// a decomposition of the plane into trapezoids, while a search structure of x- and y-nodes locates
// points in it. Points are ordered by height, level points from left to right; in that order no two
// vertices are level, so every trapezoid has at most two neighbours above and two below.

#include <sys/time.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <utility>

#include "triangulate/triangulator.h"

namespace varimesh {

namespace {

// The tables end here, for each segment but never below the second number. Jagged stars, the worst
// outlines known, need up to 9.6 nodes and 4.8 trapezoids a segment.
constexpr int kNodesPerSegment = 16;
constexpr int kFewestNodes = 800;
constexpr int kTrapsPerSegment = 8;
constexpr int kFewestTraps = 400;

bool level(double a, double b) { return std::abs(a - b) <= C_EPS; }

}  // namespace

std::vector<int> Triangulator::permute;
int Triangulator::choose_idx = 1;

// ---- Predicates

int Triangulator::_greater_than(const point_t& a, const point_t& b) {
  if (a.y > b.y + C_EPS) return 1;
  if (a.y < b.y - C_EPS) return 0;
  return a.x > b.x;
}

int Triangulator::_greater_than_equal_to(const point_t& a, const point_t& b) {
  if (a.y > b.y + C_EPS) return 1;
  if (a.y < b.y - C_EPS) return 0;
  return a.x >= b.x;
}

int Triangulator::_less_than(const point_t& a, const point_t& b) {
  if (a.y < b.y - C_EPS) return 1;
  if (a.y > b.y + C_EPS) return 0;
  return a.x < b.x;
}

int Triangulator::_equal_to(const point_t& a, const point_t& b) {
  return level(a.y, b.y) && level(a.x, b.x);
}

void Triangulator::_max(point_t& out, const point_t& a, const point_t& b) {
  out = a.y > b.y + C_EPS || (level(a.y, b.y) && a.x > b.x + C_EPS) ? a : b;
}

void Triangulator::_min(point_t& out, const point_t& a, const point_t& b) {
  out = a.y < b.y - C_EPS || (level(a.y, b.y) && a.x < b.x) ? a : b;
}

int Triangulator::is_left_of(int s, const point_t& p) const {
  const point_t& a = segments_[idx(s)].from;
  const point_t& b = segments_[idx(s)].to;
  if (level(b.y, p.y)) return p.x < b.x;
  if (level(a.y, p.y)) return p.x < a.x;
  const double area = _greater_than(b, a) ? (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x)
                                          : (a.x - b.x) * (p.y - b.y) - (a.y - b.y) * (p.x - b.x);
  return area > 0;
}

int Triangulator::inserted(int s, int which) const {
  return segments_[idx(which == 1 ? segmentBefore(s) : segmentAfter(s))].is_inserted;
}

// ---- Random order

void Triangulator::generate_random_ordering(int n) {
  choose_idx = 1;
  if (fixedSeed) {
    std::srand(*fixedSeed);
  } else {
    timeval now{};
    gettimeofday(&now, nullptr);
    std::srand(static_cast<unsigned>(now.tv_sec));
  }
  permute.resize(idx(n) + 1);
  std::iota(permute.begin(), permute.end(), 0);
  // The entries before i are drawn, those from i on are left to draw from.
  for (int i = 1; i <= n; ++i) {
    const int m = std::rand() % (n + 1 - i) + 1;
    std::swap(permute[idx(i)], permute[idx(i - 1 + m)]);
  }
}

int Triangulator::choose_segment() { return permute[idx(choose_idx++)]; }

// log* n: how often the binary logarithm can be taken without falling below 1.
int Triangulator::math_logstar_n(int n) {
  double v = n;
  if (v < 1) return -1;
  int count = 0;
  do {
    v = std::log(v) / std::log(2.0);
    ++count;
  } while (v >= 1);
  return count - 1;
}

// n divided by its h-fold binary logarithm: the segments inserted by the end of phase h.
int Triangulator::math_N(int n, int h) {
  double v = n;
  for (int i = 0; i < h; ++i) v = std::log(v) / std::log(2.0);
  return static_cast<int>(std::ceil(n / v));
}

// ---- Tables

int Triangulator::newnode() {
  if (static_cast<int>(nodes_.size()) >= std::max(kFewestNodes, kNodesPerSegment * segmentCount_)) {
    std::fputs("newnode: Query-table overflow\n", stderr);
    insertionError_ = 1;
    return -1;
  }
  nodes_.emplace_back();
  return static_cast<int>(nodes_.size()) - 1;
}

int Triangulator::newtrap() {
  if (static_cast<int>(traps_.size()) >= std::max(kFewestTraps, kTrapsPerSegment * segmentCount_)) {
    std::fputs("newtrap: Trapezoid-table overflow\n", stderr);
    insertionError_ = 1;
    return -1;
  }
  trap_t& trap = traps_.emplace_back();
  trap.lseg = trap.rseg = -1;
  trap.state = TrapState::valid;
  return static_cast<int>(traps_.size()) - 1;
}

int Triangulator::newSink(int trap, int parent) {
  const int node = newnode();
  if (node < 0) return node;
  nodes_[idx(node)].nodetype = QueryNodeType::sink;
  nodes_[idx(node)].trnum = trap;
  nodes_[idx(node)].parent = parent;
  return node;
}

// ---- Construction

int Triangulator::construct_trapezoids(int n) {
  nodes_.assign(1, query_node_t{});
  traps_.assign(1, trap_t{});
  const int root = init_query_structure(choose_segment());
  for (int i = 1; i <= n; ++i) segments_[idx(i)].fromRoot = segments_[idx(i)].toRoot = root;

  // Later searches begin at the roots found after each phase, far down in the structure.
  const int phases = math_logstar_n(n);
  int done = 1;
  for (int h = 1; h <= phases + 1; ++h) {
    const int until = h <= phases ? math_N(n, h) : n;
    for (; done < until; ++done) {
      if (insertionError_) return 0;
      add_segment(choose_segment());
    }
    if (insertionError_) return 0;
    if (h > phases) break;
    for (int i = 1; i <= n && !insertionError_; ++i) find_new_roots(i);
  }
  return insertionError_ ? 0 : 1;
}

// Cuts the plane with the first segment: 1 left of it, 2 right of it, 3 below, 4 above.
int Triangulator::init_query_structure(int s) {
  segment_t& segment = segments_[idx(s)];
  point_t high;
  point_t low;
  _max(high, segment.from, segment.to);
  _min(low, segment.from, segment.to);

  const int t1 = newtrap();
  const int t2 = newtrap();
  const int t3 = newtrap();
  const int t4 = newtrap();
  const int root = newnode();
  const int top = newSink(t4, root);
  const int lower = newnode();
  const int bottom = newSink(t3, lower);
  const int middle = newnode();
  const int left = newSink(t1, middle);
  const int right = newSink(t2, middle);
  nodes_[idx(root)] = {QueryNodeType::y, s, high, 0, 0, lower, top};
  nodes_[idx(lower)] = {QueryNodeType::y, s, low, 0, root, bottom, middle};
  nodes_[idx(middle)] = {QueryNodeType::x, s, {}, 0, lower, left, right};

  const point_t deep{-farAway_.x, -farAway_.y};
  const auto valid = TrapState::valid;
  traps_[idx(t1)] = {-1, s, high, low, t4, 0, t3, 0, left, 0, 0, valid};
  traps_[idx(t2)] = {s, -1, high, low, t4, 0, t3, 0, right, 0, 0, valid};
  traps_[idx(t3)] = {-1, -1, low, deep, t1, t2, 0, 0, bottom, 0, 0, valid};
  traps_[idx(t4)] = {-1, -1, farAway_, high, 0, 0, t1, t2, top, 0, 0, valid};
  segment.is_inserted = 1;
  return root;
}

// The trapezoid in which v lies, where a point on a boundary lies on the side of vo; 0 on failure.
int Triangulator::locate_endpoint(const point_t& v, const point_t& vo, int r) {
  for (std::size_t steps = 0; steps < nodes_.size(); ++steps) {
    const query_node_t& node = nodes_[idx(r)];
    switch (node.nodetype) {
      case QueryNodeType::sink: return node.trnum;
      case QueryNodeType::y: {
        const bool above = _greater_than(v, node.yval) ||
                           (_equal_to(v, node.yval) && _greater_than(vo, node.yval));
        r = above ? node.right : node.left;
        break;
      }
      case QueryNodeType::x: {
        const segment_t& segment = segments_[idx(node.segnum)];
        bool left;
        if (!_equal_to(v, segment.from) && !_equal_to(v, segment.to)) {
          left = is_left_of(node.segnum, v);
        } else if (level(v.y, vo.y)) {
          left = vo.x < v.x;
        } else {
          left = is_left_of(node.segnum, vo);
        }
        r = left ? node.left : node.right;
        break;
      }
      default:
        std::fputs("Quibb !!!!!\n", stderr);
        insertionError_ = 1;
        return 0;
    }
  }
  insertionError_ = 1;
  return fail();
}

void Triangulator::add_segment(int segnum) {
  const segment_t& segment = segments_[idx(segnum)];
  Insertion s{segnum, segment.from, segment.to, segment.fromRoot, segment.toRoot, false, false, 0};
  if (_greater_than(s.low, s.up)) {
    std::swap(s.up, s.low);
    std::swap(s.fromRoot, s.toRoot);
    s.swapped = true;
  }

  // Both ends become corners of trapezoids, unless the segment that shares them has done that.
  int tfirst = locate_endpoint(s.up, s.low, s.fromRoot);
  if (!insertionError_ && !inserted(segnum, s.swapped ? 2 : 1)) {
    tfirst = splitAtPoint(tfirst, s.up, segnum);
  }
  if (insertionError_) return;
  s.tlast = locate_endpoint(s.low, s.up, s.toRoot);
  s.bottomTriangle = inserted(segnum, s.swapped ? 1 : 2);
  if (!insertionError_ && !s.bottomTriangle) splitAtPoint(s.tlast, s.low, segnum);
  if (insertionError_) return;

  // Each trapezoid on the way is halved: t stays on the left, tn is the right half.
  int tfirstr = 0;
  int tlastr = 0;
  int t = tfirst;
  while (t > 0 && _greater_than_equal_to(traps_[idx(t)].lo, traps_[idx(s.tlast)].lo)) {
    const int sk = traps_[idx(t)].sink;
    const int tn = newtrap();
    const int i1 = tn < 0 ? -1 : newSink(t, sk);
    const int i2 = i1 < 0 ? -1 : newSink(tn, sk);
    if (i2 < 0) return;
    query_node_t& node = nodes_[idx(sk)];
    node.nodetype = QueryNodeType::x;
    node.segnum = segnum;
    node.left = i1;
    node.right = i2;
    if (t == tfirst) tfirstr = tn;
    if (_equal_to(traps_[idx(t)].lo, traps_[idx(s.tlast)].lo)) tlastr = tn;
    traps_[idx(tn)] = traps_[idx(t)];
    traps_[idx(t)].sink = i1;
    traps_[idx(tn)].sink = i2;

    if (traps_[idx(t)].d0 <= 0 && traps_[idx(t)].d1 <= 0) {
      std::fputs("add_segment: error\n", stderr);
      insertionError_ = 1;
      return;
    }
    linkAbove(s, t, tn);
    const int next = linkBelow(s, t, tn);
    traps_[idx(t)].rseg = segnum;
    traps_[idx(tn)].lseg = segnum;
    t = next;
  }

  // The halves between two corners on one side of the segment are one trapezoid.
  merge_trapezoids(segnum, tfirst, s.tlast, 1);
  merge_trapezoids(segnum, tfirstr, tlastr, 2);
  segments_[idx(segnum)].is_inserted = 1;
}

// Splits trapezoid tu at the height of p, the upper part keeping its number; returns the lower
// part.
int Triangulator::splitAtPoint(int tu, const point_t& p, int s) {
  const int sk = traps_[idx(tu)].sink;
  const int tl = newtrap();
  const int i1 = tl < 0 ? -1 : newSink(tu, sk);
  const int i2 = i1 < 0 ? -1 : newSink(tl, sk);
  if (i2 < 0) return 0;
  trap_t& upper = traps_[idx(tu)];
  trap_t& lower = traps_[idx(tl)];
  lower = upper;
  upper.lo = lower.hi = p;
  upper.d0 = tl;
  upper.d1 = 0;
  lower.u0 = tu;
  lower.u1 = 0;
  replaceUpperLink(lower.d0, tu, tl);
  replaceUpperLink(lower.d1, tu, tl);

  query_node_t& node = nodes_[idx(sk)];
  node.nodetype = QueryNodeType::y;
  node.yval = p;
  node.segnum = s;
  node.left = i2;
  node.right = i1;
  upper.sink = i1;
  lower.sink = i2;
  return tl;
}

void Triangulator::replaceUpperLink(int trap, int was, int becomes) {
  if (trap <= 0) return;
  if (traps_[idx(trap)].u0 == was) traps_[idx(trap)].u0 = becomes;
  if (traps_[idx(trap)].u1 == was) traps_[idx(trap)].u1 = becomes;
}

// Deals the neighbours above t out to its halves.
void Triangulator::linkAbove(const Insertion& s, int t, int tn) {
  trap_t& left = traps_[idx(t)];
  trap_t& right = traps_[idx(tn)];
  if (left.u0 > 0 && left.u1 > 0) {
    // The way comes from above.
    if (left.usave <= 0) {
      right.u0 = left.u1;
      left.u1 = right.u1 = -1;
      traps_[idx(right.u0)].d0 = tn;
    } else if (left.uside == 1) {
      right.u0 = left.u1;
      left.u1 = -1;
      right.u1 = left.usave;
      traps_[idx(left.u0)].d0 = t;
      traps_[idx(right.u0)].d0 = tn;
      traps_[idx(right.u1)].d0 = tn;
    } else {
      right.u1 = -1;
      right.u0 = left.u1;
      left.u1 = left.u0;
      left.u0 = left.usave;
      traps_[idx(left.u0)].d0 = t;
      traps_[idx(left.u1)].d0 = t;
      traps_[idx(right.u0)].d0 = tn;
    }
    left.usave = right.usave = 0;
    return;
  }

  if (left.u0 <= 0) return;
  trap_t& above = traps_[idx(left.u0)];
  if (above.d0 > 0 && above.d1 > 0) {
    // An upward cusp: the other segment from this corner has halved the trapezoid above it already.
    const int rseg = traps_[idx(above.d0)].rseg;
    if (rseg <= 0 || is_left_of(rseg, s.low)) {
      left.u1 = right.u0 = right.u1 = -1;
      above.d0 = t;
    } else {
      left.u0 = left.u1 = right.u1 = -1;
      above.d1 = tn;
    }
  } else {
    // A fresh segment begins here.
    above.d0 = t;
    above.d1 = tn;
  }
}

// Deals the neighbours below t out to its halves; returns the trapezoid that the segment enters
// next, 0 at the end of the way.
int Triangulator::linkBelow(const Insertion& s, int t, int tn) {
  const trap_t& left = traps_[idx(t)];
  return left.d0 > 0 && left.d1 > 0 ? linkTwoBelow(s, t, tn) : linkOneBelow(s, t, tn);
}

bool Triangulator::atBottomTriangle(const Insertion& s, int t) const {
  return s.bottomTriangle && _equal_to(traps_[idx(t)].lo, traps_[idx(s.tlast)].lo);
}

int Triangulator::linkOneBelow(const Insertion& s, int t, int tn) {
  trap_t& left = traps_[idx(t)];
  trap_t& right = traps_[idx(tn)];
  const int x = left.d0 > 0 ? left.d0 : left.d1;
  trap_t& below = traps_[idx(x)];
  if (atBottomTriangle(s, t)) {
    // A downward cusp: the half towards the other segment ends in its tip.
    const int other = s.swapped ? segmentBefore(s.segnum) : segmentAfter(s.segnum);
    if (is_left_of(other, s.up)) {
      below.u0 = t;
      right.d0 = right.d1 = -1;
    } else {
      below.u1 = tn;
      left.d0 = left.d1 = -1;
    }
    return 0;
  }
  if (below.u0 > 0 && below.u1 > 0) {
    // For the moment three lie above x: the third is kept until the segment is threaded through x.
    below.uside = below.u0 == t ? 1 : 2;
    below.usave = below.u0 == t ? below.u1 : below.u0;
  }
  below.u0 = t;
  below.u1 = tn;
  return x;
}

int Triangulator::linkTwoBelow(const Insertion& s, int t, int tn) {
  trap_t& left = traps_[idx(t)];
  trap_t& right = traps_[idx(tn)];
  const point_t& lo = left.lo;
  const int d0 = left.d0;
  const int d1 = left.d1;
  bool entersLeft;
  if (level(lo.y, s.up.y)) {
    entersLeft = s.up.x < lo.x;
  } else {
    const double x = s.up.x + (s.low.x - s.up.x) * (lo.y - s.up.y) / (s.low.y - s.up.y);
    entersLeft = _less_than({x, lo.y}, lo);
  }

  trap_t& below0 = traps_[idx(d0)];
  trap_t& below1 = traps_[idx(d1)];
  if (atBottomTriangle(s, t)) {
    below0.u0 = t;
    below0.u1 = -1;
    below1.u0 = tn;
    below1.u1 = -1;
    right.d0 = d1;
    right.d1 = left.d1 = -1;
    return 0;
  }
  if (entersLeft) {
    below0.u0 = t;
    below0.u1 = tn;
    below1.u0 = tn;
    below1.u1 = -1;
    left.d1 = -1;
    return d0;
  }
  below0.u0 = t;
  below0.u1 = -1;
  below1.u0 = t;
  below1.u1 = tn;
  right.d0 = d1;
  right.d1 = -1;
  return d1;
}

// Joins trapezoids on one side of segment s (1 left, 2 right) that no corner separates any more.
void Triangulator::merge_trapezoids(int s, int tfirst, int tlast, int side) {
  const auto boundedBySegment = [&](int t) {
    return t > 0 && (side == 1 ? traps_[idx(t)].rseg : traps_[idx(t)].lseg) == s;
  };
  std::size_t steps = 0;
  int t = tfirst;
  while (t > 0 && _greater_than_equal_to(traps_[idx(t)].lo, traps_[idx(tlast)].lo)) {
    if (++steps > traps_.size()) {
      insertionError_ = 1;
      fail();
      return;
    }
    trap_t& upper = traps_[idx(t)];
    const int tnext = boundedBySegment(upper.d0) ? upper.d0 : upper.d1;
    if (!boundedBySegment(tnext)) {
      t = upper.d1;
      continue;
    }
    trap_t& lower = traps_[idx(tnext)];
    if (upper.lseg != lower.lseg || upper.rseg != lower.rseg) {
      t = tnext;
      continue;
    }
    query_node_t& parent = nodes_[idx(nodes_[idx(lower.sink)].parent)];
    (parent.left == lower.sink ? parent.left : parent.right) = upper.sink;
    upper.d0 = lower.d0;
    upper.d1 = lower.d1;
    replaceUpperLink(upper.d0, tnext, t);
    replaceUpperLink(upper.d1, tnext, t);
    upper.lo = lower.lo;
    lower.state = TrapState::invalid;
  }
}

void Triangulator::find_new_roots(int s) {
  segment_t& segment = segments_[idx(s)];
  if (segment.is_inserted) return;
  segment.fromRoot = traps_[idx(locate_endpoint(segment.from, segment.to, segment.fromRoot))].sink;
  segment.toRoot = traps_[idx(locate_endpoint(segment.to, segment.from, segment.toRoot))].sink;
}

}  // namespace varimesh
