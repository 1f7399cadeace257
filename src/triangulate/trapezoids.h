// The records of the trapezoidation.

#pragma once

namespace varimesh {

// Points of the plane of projection closer than this, on an axis, count as level on it.
inline constexpr double C_EPS = 1.0e-7;

struct point_t {
  double x;
  double y;
};

// Segment i runs from point i of the outline to the one after it.
struct segment_t {
  point_t from;
  point_t to;
  int is_inserted;
  int fromRoot;  // query nodes where the searches for the two ends begin
  int toRoot;
};

enum class QueryNodeType {
  unused = 0,
  x = 1,     // split by a segment
  y = 2,     // split at the height of a point
  sink = 3,  // a trapezoid
};

struct query_node_t {
  QueryNodeType nodetype;
  int segnum;    // x: the segment; y: the segment that brought the point
  point_t yval;  // y: the point
  int trnum;     // sink: the trapezoid
  int parent;
  int left;   // below the point, or left of the segment
  int right;  // above the point, or right of the segment
};

enum class TrapState {
  unused = 0,
  valid = 1,
  invalid = 2,  // merged into the one above it
};

// A link to a neighbour is 0 or -1 where there is none.
struct trap_t {
  int lseg;  // bounding segments, -1 for none
  int rseg;
  point_t hi;
  point_t lo;
  int u0;  // above, from the left
  int u1;
  int d0;  // below, from the left
  int d1;
  int sink;   // its query node
  int usave;  // a third trapezoid above, kept while a segment is threaded through
  int uside;  // where that one was: 1 on the right of the way, 2 on its left
  TrapState state;
};

}  // namespace varimesh
