// Monotone pieces: the walk over the trapezoids inside the outline adds a diagonal wherever the two
// corners that bound a trapezoid above and below are not joined by one of its sides. The diagonals
// cut the outline into y-monotone pieces, and one sweep with a reflex chain cuts each piece into
// triangles.

#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "triangulate/triangulator.h"

namespace varimesh {

namespace {

constexpr int kChainPerCorner = 4;
constexpr int kFewestChain = 400;

// A triangle may be turned over by rounding, by this part of the outline's extent.
constexpr double kFlat = 1e-6;

enum class Link { u0, u1, d0, d1 };

// Neighbours in the order in which they are visited.
struct Links {
  Link list[4] = {};
  int count = 0;
  constexpr Links(std::initializer_list<Link> links) {
    for (const Link link : links) list[count++] = link;
  }
};

enum class Cut { none, ab, ba };

// How the walk goes on from a trapezoid: which way round the piece is cut along the diagonal, the
// neighbours that continue the piece, and those that begin the new one. The order of the visits
// decides which piece gets which number, and so the order of the triangles.
struct Route {
  Cut cut;
  Links piece;
  Links fresh;
};

struct Routes {
  Route swapped;
  Route otherwise;
};

constexpr Link u0 = Link::u0, u1 = Link::u1, d0 = Link::d0, d1 = Link::d1;
constexpr Route kUnused{Cut::none, {}, {}};

constexpr Routes kRoutes[] = {
    // no neighbour above: two below; fewer
    {{Cut::ba, {d1}, {d0}}, {Cut::ab, {d0}, {d1}}},
    {kUnused, {Cut::none, {u0, u1, d0, d1}, {}}},
    // no neighbour below: two above; one
    {{Cut::ba, {u1}, {u0}}, {Cut::ab, {u0}, {u1}}},
    {kUnused, {Cut::none, {u0, u1, d0, d1}, {}}},
    // two above, two below
    {{Cut::ba, {u1, d1}, {u0, d0}}, {Cut::ab, {u0, d0}, {u1, d1}}},
    // two above, one below: the lower corner on the left side; on the right
    {{Cut::ba, {u0}, {d0, u1, d1}}, {Cut::ab, {u1, d0, d1}, {u0}}},
    {{Cut::ba, {u1}, {d1, d0, u0}}, {Cut::ab, {u0, d0, d1}, {u1}}},
    // one above, two below: the upper corner on the left side; on the right
    {{Cut::ab, {d0}, {u0, u1, d1}}, {Cut::ba, {u1, d1, u0}, {d0}}},
    {{Cut::ba, {d1}, {u1, u0, d0}}, {Cut::ab, {u0, d0, u1}, {d1}}},
    // one above, one below: upper corner left and lower right; upper right and lower left; one side
    {{Cut::ba, {u0, u1}, {d1, d0}}, {Cut::ab, {d1, d0}, {u0, u1}}},
    {{Cut::ba, {u0, u1}, {d1, d0}}, {Cut::ab, {d1, d0}, {u0, u1}}},
    {kUnused, {Cut::none, {u0, d0, u1, d1}, {}}},
};

double cross(const point_t& a, const point_t& b, const point_t& origin) {
  return (a.x - origin.x) * (b.y - origin.y) - (a.y - origin.y) * (b.x - origin.x);
}

double distance(const point_t& a, const point_t& b) { return std::hypot(a.x - b.x, a.y - b.y); }

}  // namespace

// ---- Cutting the outline

int Triangulator::monotonate_trapezoids(int n) {
  const auto start = std::find_if(traps_.begin(), traps_.end(),
                                  [&](const trap_t& t) { return inside_polygon(t); });
  if (start == traps_.end()) return 0;

  visited_.assign(traps_.size(), 0);
  chain_.assign(1, ChainElement{});
  vertices_.assign(1, Vertex{});
  for (int i = 1; i <= n; ++i) {
    const int next = i % n + 1;
    chain_.push_back({i, next, i == 1 ? n : i - 1});
    vertices_.push_back({segments_[idx(i)].from, {next}, {i}, 1});
  }
  mon_.assign(1, 1);

  const int t = static_cast<int>(start - traps_.begin());
  if (start->u0 > 0) {
    if (!traverse_polygon(0, t, start->u0, 1)) return 0;
  } else if (start->d0 > 0) {
    if (!traverse_polygon(0, t, start->d0, 2)) return 0;
  }
  return newmon();
}

// Answers for triangular trapezoids only: every outline has one, and one is enough to start from.
int Triangulator::inside_polygon(const trap_t& t) const {
  if (t.state != TrapState::valid || t.lseg <= 0 || t.rseg <= 0) return 0;
  const bool triangle = (t.u0 <= 0 && t.u1 <= 0) || (t.d0 <= 0 && t.d1 <= 0);
  if (!triangle) return 0;
  const segment_t& right = segments_[idx(t.rseg)];
  return _greater_than(right.to, right.from);
}

// Walks depth first over the trapezoids inside; its own stack holds what a recursion would have yet
// to visit, the next one on top. False when the outline cannot be cut.
bool Triangulator::traverse_polygon(int piece, int trap, int from, int direction) {
  stack_.assign(1, {piece, trap, from, direction});
  while (!stack_.empty()) {
    const Visit visit = stack_.back();
    stack_.pop_back();
    if (visit.trap < 1 || visited_[idx(visit.trap)]) continue;
    visited_[idx(visit.trap)] = 1;

    const trap_t& t = traps_[idx(visit.trap)];
    if (t.lseg < 1 || t.rseg < 1) return false;  // the walk has left the outline
    const Configuration config = configurationOf(visit);
    const Route& route =
        config.swapped ? kRoutes[config.row].swapped : kRoutes[config.row].otherwise;
    int fresh = visit.piece;
    if (route.cut != Cut::none) {
      if (config.a < 1 || config.b < 1) return false;
      fresh = route.cut == Cut::ab ? make_new_monotone_poly(visit.piece, config.a, config.b)
                                   : make_new_monotone_poly(visit.piece, config.b, config.a);
      if (fresh < 0) return false;
    }

    const auto push = [&](const Links& links, int into) {
      for (int i = links.count - 1; i >= 0; --i) {
        const Link link = links.list[i];
        const bool up = link == u0 || link == u1;
        const int neighbour = link == u0 ? t.u0 : link == u1 ? t.u1 : link == d0 ? t.d0 : t.d1;
        stack_.push_back({into, neighbour, visit.trap, up ? 2 : 1});
      }
    };
    push(route.fresh, fresh);
    push(route.piece, visit.piece);
  }
  return true;
}

// A segment's number stands for its start in a diagonal.
Triangulator::Configuration Triangulator::configurationOf(const Visit& visit) const {
  const trap_t& t = traps_[idx(visit.trap)];
  const bool oneAbove = t.u0 > 0 || t.u1 > 0;
  const bool twoAbove = t.u0 > 0 && t.u1 > 0;
  const bool oneBelow = t.d0 > 0 || t.d1 > 0;
  const bool twoBelow = t.d0 > 0 && t.d1 > 0;
  const bool down = visit.direction == 1;
  // The corners in the middle of the upper and of the lower boundary.
  const int above = twoAbove ? traps_[idx(t.u0)].rseg : 0;
  const int below = twoBelow ? traps_[idx(t.d1)].lseg : 0;
  const segment_t& left = segments_[idx(t.lseg)];
  const segment_t& right = segments_[idx(t.rseg)];

  if (!oneAbove) {
    if (twoBelow) return {0, visit.from == t.d1, below, t.lseg};
    return {1, false, 0, 0};
  }
  if (!oneBelow) {
    if (twoAbove) return {2, visit.from == t.u1, t.rseg, above};
    return {3, false, 0, 0};
  }
  if (twoAbove && twoBelow) {
    return {4, visit.from == (down ? t.u1 : t.d1), below, above};
  }
  if (twoAbove) {
    if (_equal_to(t.lo, left.to))
      return {5, down && visit.from == t.u0, above, segmentAfter(t.lseg)};
    return {6, down && visit.from == t.u1, t.rseg, above};
  }
  if (twoBelow) {
    if (_equal_to(t.hi, left.from)) return {7, !down && visit.from == t.d0, below, t.lseg};
    return {8, !down && visit.from == t.d1, below, segmentAfter(t.rseg)};
  }
  if (_equal_to(t.hi, left.from) && _equal_to(t.lo, right.from)) return {9, down, t.rseg, t.lseg};
  if (_equal_to(t.hi, right.to) && _equal_to(t.lo, left.to)) {
    return {10, down, segmentAfter(t.rseg), segmentAfter(t.lseg)};
  }
  return {11, false, 0, 0};
}

// Cuts the boundary of a piece along the diagonal a-b, which becomes p-q in the old piece and i-j
// in the new one; returns the new piece, -1 on failure.
int Triangulator::make_new_monotone_poly(int piece, int a, int b) {
  int ip;
  int iq;
  get_vertex_positions(a, b, ip, iq);
  Vertex& va = vertices_[idx(a)];
  Vertex& vb = vertices_[idx(b)];
  if (a == b) return -1;
  if (va.nextfree >= kChainsPerVertex || vb.nextfree >= kChainsPerVertex) return -1;
  const int p = va.vpos[idx(ip)];
  const int q = vb.vpos[idx(iq)];
  const int i = new_chain_element();
  const int j = new_chain_element();
  if (j < 0) return -1;
  const int fresh = newmon();

  chain_[idx(i)] = {a, chain_[idx(p)].next, j};
  chain_[idx(chain_[idx(i)].next)].prev = i;
  chain_[idx(j)] = {b, i, chain_[idx(q)].prev};
  chain_[idx(chain_[idx(j)].prev)].next = j;
  chain_[idx(p)].next = q;
  chain_[idx(q)].prev = p;

  va.vnext[idx(ip)] = b;
  va.vpos[idx(va.nextfree)] = i;
  va.vnext[idx(va.nextfree)] = chain_[idx(chain_[idx(i)].next)].vnum;
  ++va.nextfree;
  vb.vpos[idx(vb.nextfree)] = j;
  vb.vnext[idx(vb.nextfree)] = a;
  ++vb.nextfree;

  mon_[idx(piece)] = p;
  mon_[idx(fresh)] = i;
  return fresh;
}

// A diagonal cuts, at each of its ends, the chain whose next edge lies first clockwise of it.
void Triangulator::get_vertex_positions(int a, int b, int& ip, int& iq) const {
  const auto positionOf = [&](int vertex, int other) {
    const Vertex& v = vertices_[idx(vertex)];
    double largest = -4.0;
    int position = 0;
    for (int i = 0; i < kChainsPerVertex; ++i) {
      const int next = v.vnext[idx(i)];
      if (next <= 0) continue;
      const double angle = get_angle(v.pt, vertices_[idx(next)].pt, vertices_[idx(other)].pt);
      if (angle > largest) {
        largest = angle;
        position = i;
      }
    }
    return position;
  };
  ip = positionOf(a, b);
  iq = positionOf(b, a);
}

// Orders the directions p-o counter-clockwise from p-n: 1 straight on, falling to -4 after a full
// turn.
double Triangulator::get_angle(const point_t& p, const point_t& n, const point_t& o) {
  const point_t u{n.x - p.x, n.y - p.y};
  const point_t w{o.x - p.x, o.y - p.y};
  const double cosine =
      (u.x * w.x + u.y * w.y) / std::sqrt(u.x * u.x + u.y * u.y) / std::sqrt(w.x * w.x + w.y * w.y);
  return u.x * w.y - u.y * w.x >= 0 ? cosine : -cosine - 2;
}

int Triangulator::newmon() {
  mon_.push_back(0);
  return static_cast<int>(mon_.size()) - 1;
}

int Triangulator::new_chain_element() {
  if (static_cast<int>(chain_.size()) >= std::max(kFewestChain, kChainPerCorner * segmentCount_)) {
    return -1;
  }
  chain_.emplace_back();
  return static_cast<int>(chain_.size()) - 1;
}

// ---- Triangles

int Triangulator::triangulate_monotone_polygons(int pieces) {
  triangles_.clear();
  for (int i = 0; i < pieces; ++i) {
    if (!triangulatePiece(mon_[idx(i)])) return 0;
  }
  return triangles_.size() + 2 == idx(segmentCount_) && rowsKeepDirection();
}

bool Triangulator::triangulatePiece(int start) {
  const int first = chain_[idx(start)].vnum;
  point_t ymax = vertices_[idx(first)].pt;
  point_t ymin = ymax;
  int posmax = start;
  std::size_t count = 1;
  int p = chain_[idx(start)].next;
  for (; chain_[idx(p)].vnum != first; p = chain_[idx(p)].next) {
    const point_t& pt = vertices_[idx(chain_[idx(p)].vnum)].pt;
    if (_greater_than(pt, ymax)) {
      ymax = pt;
      posmax = p;
    }
    if (_less_than(pt, ymin)) ymin = pt;
    if (++count > chain_.size()) return false;
  }

  const auto vertexOf = [&](int position) { return chain_[idx(position)].vnum; };
  if (count == 3)
    return writeRow(first, vertexOf(chain_[idx(p)].next), vertexOf(chain_[idx(p)].prev));
  const point_t& afterTop = vertices_[idx(vertexOf(chain_[idx(posmax)].next))].pt;
  return triangulate_single_polygon(posmax, _equal_to(afterTop, ymin) ? 1 : 2);
}

// Sweeps down a piece of which one side (1 left, 2 right) is a single segment. The reflex chain
// holds the corners of the other side that wait for one from which they can be cut off.
bool Triangulator::triangulate_single_polygon(int posmax, int side) {
  const auto vertexOf = [&](int position) { return chain_[idx(position)].vnum; };
  std::vector<int>& rc = reflexChain_;
  const int next = chain_[idx(posmax)].next;
  int position = chain_[idx(next)].next;
  int end;
  if (side == 1) {
    rc.assign({vertexOf(next), vertexOf(position)});
    position = chain_[idx(position)].next;
    end = vertexOf(posmax);
  } else {
    rc.assign({vertexOf(posmax), vertexOf(next)});
    end = vertexOf(chain_[idx(posmax)].prev);
    if (end == 0) end = segmentCount_;
  }

  const auto pt = [&](int vertex) -> const point_t& { return vertices_[idx(vertex)].pt; };
  while (vertexOf(position) != end || rc.size() > 2) {
    const int v = vertexOf(position);
    if (rc.size() >= 2 && cross(pt(rc[rc.size() - 2]), pt(rc.back()), pt(v)) > 0) {
      if (!writeRow(rc[rc.size() - 2], rc.back(), v)) return false;
      rc.pop_back();
    } else {
      rc.push_back(v);
      position = chain_[idx(position)].next;
      if (rc.size() > vertices_.size()) return false;
    }
  }
  return rc.size() == 2 && writeRow(rc[0], rc[1], vertexOf(position));
}

bool Triangulator::writeRow(int a, int b, int c) {
  if (triangles_.size() + 2 >= idx(segmentCount_)) return false;
  triangles_.push_back({a, b, c});
  return true;
}

bool Triangulator::rowsKeepDirection() const {
  double left = vertices_[1].pt.x, right = left, bottom = vertices_[1].pt.y, top = bottom;
  for (std::size_t i = 2; i < vertices_.size(); ++i) {
    const point_t& p = vertices_[i].pt;
    left = std::min(left, p.x);
    right = std::max(right, p.x);
    bottom = std::min(bottom, p.y);
    top = std::max(top, p.y);
  }
  const double flat = kFlat * std::max(right - left, top - bottom);
  return std::all_of(triangles_.begin(), triangles_.end(), [&](const Row& row) {
    const point_t& a = vertices_[idx(row[0])].pt;
    const point_t& b = vertices_[idx(row[1])].pt;
    const point_t& c = vertices_[idx(row[2])].pt;
    const double longest = std::max({distance(a, b), distance(b, c), distance(c, a)});
    return cross(a, b, c) >= -flat * longest;
  });
}

}  // namespace varimesh
