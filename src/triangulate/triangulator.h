// Splits one polygon in space into triangles.
//
// The polygon is projected onto a coordinate plane in which its outline does not cross itself,
// decomposed into trapezoids, cut into y-monotone pieces, and each piece is triangulated by one
// sweep. The trapezoids come from Seidel's randomized incremental algorithm (R. Seidel, "A simple
// and fast incremental randomized algorithm for computing trapezoidal decompositions and for
// triangulating polygons", 1991); the expected running time grows like n log* n.

#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "triangulate/edgesweep.h"
#include "triangulate/outline.h"
#include "triangulate/trapezoids.h"

namespace varimesh {

// One object serves any number of polygons, one after the other: `reset`, `addPoint` for each
// corner in order, `run`, and on success `getCount` rows of three corners read with `getPoint`. The
// tables grow to what the largest polygon so far needed and are reused; a `reset` costs what the
// polygon before it cost.
//
// `run` answers 0 when the polygon cannot be split, and has then said so on standard error (a
// polygon without corners is silent). Nothing needs repair afterwards.
class Triangulator {
 public:
  Triangulator() { reset(); }

  // Forgets the polygon.
  void reset();

  // Appends a corner.
  void addPoint(double x, double y, double z);
  // Appends a projected corner, the start of the next segment; returns the slot used, counted
  // from 1.
  int addPoint(double u, double v);

  // Triangulates the corners added; 1 on success. Not to be called again before a `reset`.
  int run();

  // The number of triangles of a polygon that `run` accepted.
  int getCount() const;
  // The index (from 0, in the order of `addPoint`) of a corner, 0 to 2, of a triangle. Triangles
  // turn the same way as their polygon.
  int getPoint(int row, int corner) const;
  // The same with the coordinates of that corner.
  int getPoint(int row, int corner, double& x, double& y, double& z) const;

  // The steps of `run`.

  // Chooses the plane of projection; 0 when every plane is ruled out.
  int checkForXYZ();
  // Whether segment a-b meets segment c-d: 1 they do, 2 they are parallel, 0 neither. End points
  // count, and there is no tolerance.
  static int checkCrossing(double au, double av, double bu, double bv, double cu, double cv,
                           double du, double dv);
  // Triangulates the projected corners.
  int triangulate();
  // 1 when the projected outline turns clockwise.
  int clockWiseOrder() const;
  // Makes a new random order of the segments 1 to n, to be read with `choose_segment`.
  static void generate_random_ordering(int n);
  static int choose_segment();
  // Decomposes the plane along the n segments; 1 on success, 0 after a message.
  int construct_trapezoids(int n);
  // Cuts the outline into monotone pieces; returns their number, 0 on failure (without a message).
  int monotonate_trapezoids(int n);
  // Triangulates the pieces into the triangle table; 0 on failure (without a message).
  int triangulate_monotone_polygons(int pieces);

  // Not 0: report every step on standard output and in the files "tri_3D" and "tri_2D".
  static int verbose;
  // The seed of the random order; without one, the time of day in seconds.
  static std::optional<unsigned> fixedSeed;

 private:
  using Point3 = std::array<double, 3>;
  using Row = std::array<int, 3>;

  // A segment while it is threaded through the trapezoids, its higher end first.
  struct Insertion {
    int segnum;
    point_t up;
    point_t low;
    int fromRoot;
    int toRoot;
    bool swapped;  // the segment runs upwards, so its ends were exchanged
    bool
        bottomTriangle;  // the lower end was there before, so the way ends in the tip of a triangle
    int tlast;           // the trapezoid above the lower end
  };

  // A position on the boundary of a piece.
  struct ChainElement {
    int vnum;  // point slot
    int next;
    int prev;
  };

  // A vertex lies on its own boundary and on at most three diagonals.
  static constexpr int kChainsPerVertex = 4;
  struct Vertex {
    point_t pt;
    std::array<int, kChainsPerVertex>
        vnext;                               // for each chain the vertex after this one, 0 for none
    std::array<int, kChainsPerVertex> vpos;  // for each chain the position of this vertex
    int nextfree;                            // first unused entry of both
  };

  // A trapezoid that the walk over the inside is about to enter.
  struct Visit {
    int piece;
    int trap;
    int from;
    int direction;  // 1 entered from above, 2 from below
  };

  // What the neighbours of a trapezoid say about it: the row of the table of routes (from 0) and
  // the diagonal a-b, whose ends are 0 where the trapezoid needs none.
  struct Configuration {
    int row;
    bool swapped;
    int a;
    int b;
  };

  // Tables are indexed with int throughout, since links and slots are ints.
  static constexpr std::size_t idx(int i) { return static_cast<std::size_t>(i); }

  // triangulator.cpp
  int triangulateQuadrilateral();
  void connectSegments();
  bool repeatsFirstPoint() const;
  static int fail();  // says so; 0
  void write3D() const;
  void write2D() const;

  // projection.cpp
  std::array<bool, 3> comparePairsAloud() const;
  void project(int u, int v, std::vector<Point2>& corners) const;

  // trapezoidation.cpp
  static int _greater_than(const point_t& a, const point_t& b);
  static int _greater_than_equal_to(const point_t& a, const point_t& b);
  static int _less_than(const point_t& a, const point_t& b);
  static int _equal_to(const point_t& a, const point_t& b);
  static void _max(point_t& out, const point_t& a, const point_t& b);
  static void _min(point_t& out, const point_t& a, const point_t& b);
  static int math_logstar_n(int n);
  static int math_N(int n, int h);
  int segmentAfter(int s) const { return s % segmentCount_ + 1; }
  int segmentBefore(int s) const { return (s + segmentCount_ - 2) % segmentCount_ + 1; }
  int newnode();
  int newtrap();
  int newSink(int trap, int parent);
  int init_query_structure(int s);
  int is_left_of(int s, const point_t& p) const;
  int inserted(int s, int which) const;
  int locate_endpoint(const point_t& v, const point_t& vo, int r);
  void add_segment(int s);
  int splitAtPoint(int tu, const point_t& p, int s);
  void replaceUpperLink(int trap, int was, int becomes);
  void linkAbove(const Insertion& s, int t, int tn);
  int linkBelow(const Insertion& s, int t, int tn);
  int linkOneBelow(const Insertion& s, int t, int tn);
  int linkTwoBelow(const Insertion& s, int t, int tn);
  bool atBottomTriangle(const Insertion& s, int t) const;
  void merge_trapezoids(int s, int tfirst, int tlast, int side);
  void find_new_roots(int s);

  // monotone.cpp
  int inside_polygon(const trap_t& t) const;
  bool traverse_polygon(int piece, int trap, int from, int direction);
  Configuration configurationOf(const Visit& visit) const;
  int make_new_monotone_poly(int piece, int a, int b);
  void get_vertex_positions(int a, int b, int& ip, int& iq) const;
  static double get_angle(const point_t& p, const point_t& n, const point_t& o);
  int newmon();
  int new_chain_element();
  bool triangulatePiece(int start);
  bool triangulate_single_polygon(int posmax, int side);
  bool writeRow(int a, int b, int c);
  bool rowsKeepDirection() const;

  std::vector<Point3> points_;  // in the order of `addPoint`
  int reversed_ = 0;            // 1: the outline was clockwise, its segments run backwards
  int insertionError_ = 0;      // 1: the trapezoidation failed and has said why
  int useX_ = -1;               // the axes of the plane of projection: -1 undecided, else 0 or 1
  int useY_ = -1;
  int useZ_ = -1;

  std::vector<query_node_t> nodes_;  // node 0 is not used
  std::vector<trap_t> traps_;        // trapezoid 0 is not used
  std::vector<segment_t> segments_;  // slot 0 is not used
  int segmentCount_ = 0;
  point_t farAway_{};  // the upper bounding point at infinity; the lower one is its opposite

  std::vector<Point2> projected_;  // scratch of the choice of the plane
  EdgeSweep edgeSweep_;

  std::vector<Row> triangles_;  // corners are point slots, or indices below five corners
  std::vector<ChainElement> chain_;
  std::vector<Vertex> vertices_;  // slot 0 is not used
  std::vector<int> mon_;          // for each piece a position on its boundary
  std::vector<char> visited_;     // for each trapezoid
  std::vector<Visit> stack_;
  std::vector<int> reflexChain_;

  static std::vector<int> permute;  // the random order, from entry 1
  static int choose_idx;            // cursor into it
};

}  // namespace varimesh
