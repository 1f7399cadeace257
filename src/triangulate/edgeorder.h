// Whether an outline crosses itself, from the order in which a sweep line meets its edges.

#pragma once

#include <cstddef>
#include <set>
#include <span>
#include <vector>

#include "triangulate/outline.h"

namespace varimesh {

// The bounding box of an edge, wide enough that `checkCrossing` cannot answer 1 for disjoint ones.
struct EdgeBox {
  double lo[2];
  double hi[2];
  int edge;
};

// Takes n log n whatever the shape of the outline, but more for each corner than a sweep over the
// boxes of an ordinary one. There is no answer where corners and edges lie so close together that
// rounding has a say, or where many edges are next to level. Serves one outline, and keeps
// references to what it is given.
class EdgeOrder {
 public:
  enum class Verdict { clear, crossing, unknown };

  // The boxes are those of all edges, in any order.
  EdgeOrder(const Outline& outline, std::span<const EdgeBox> boxes);
  EdgeOrder(const EdgeOrder&) = delete;
  EdgeOrder& operator=(const EdgeOrder&) = delete;

  // Whether edges meet that are not neighbours.
  Verdict examine();

 private:
  // An edge against the sweep line, from its lower end: x along the line, w across.
  struct Sloped {
    double x;
    double w;
    double slope;  // of x over w
    int top;       // the corner at the upper end
    bool isFlat;   // too close to level for the sweep or for its bounds of error
  };
  // An edge that the sweep line meets. Where the outline goes on upwards, the next edge takes over.
  struct Live {
    mutable int edge;
  };
  struct ByPosition {
    using is_transparent = void;
    const EdgeOrder* order;
    bool operator()(const Live& a, const Live& b) const {
      return order->position(a.edge) < order->position(b.edge);
    }
    bool operator()(const Live& a, double x) const { return order->position(a.edge) < x; }
    bool operator()(double x, const Live& a) const { return x < order->position(a.edge); }
  };
  using LiveEdges = std::multiset<Live, ByPosition>;

  static constexpr std::size_t idx(int i) { return static_cast<std::size_t>(i); }

  bool turnAwayFromEdges();
  int turn(double angle);
  bool cornersAreApart() const;
  bool flatEdgesCross() const;
  Verdict pass(int corner);
  Verdict lookBeside(int corner, LiveEdges::iterator place) const;
  Verdict judge(int corner, int edge) const;
  bool isAt(int corner, int edge) const;
  double position(int edge) const {
    const Sloped& s = edges_[idx(edge)];
    return s.x + (level_ - s.w) * s.slope;
  }

  const Outline& outline_;
  std::span<const EdgeBox> boxes_;
  double near_;       // distances along the sweep line up to this are too short for an answer
  double sameLevel_;  // and across it
  std::vector<Point2> turned_;  // the corners as x and w
  std::vector<Sloped> edges_;
  std::vector<int> byLevel_;  // corners, from the lowest
  std::vector<LiveEdges::iterator> where_;
  LiveEdges live_{ByPosition{this}};
  double level_ = 0;
};

}  // namespace varimesh
