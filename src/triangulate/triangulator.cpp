#include "triangulate/triangulator.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>

namespace varimesh {

namespace {

// Where the outline lies within this bound the points at infinity are at the bound.
constexpr double kInfinity = 1073741824.0;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

}  // namespace

int Triangulator::verbose = 0;
std::optional<unsigned> Triangulator::fixedSeed;

void Triangulator::reset() {
  if (verbose) std::printf("Triangulator::reset();\n");
  points_.clear();
  segments_.assign(1, segment_t{});
  triangles_.clear();
  segmentCount_ = 0;
  reversed_ = 0;
  insertionError_ = 0;
  useX_ = useY_ = useZ_ = -1;
}

void Triangulator::addPoint(double x, double y, double z) { points_.push_back({x, y, z}); }

int Triangulator::addPoint(double u, double v) {
  segments_.push_back({.from = {u, v}, .to = {}, .is_inserted = 0, .fromRoot = 0, .toRoot = 0});
  return static_cast<int>(segments_.size()) - 1;
}

int Triangulator::run() {
  const int n = static_cast<int>(points_.size());
  if (n == 0) return 0;
  if (n < 3) {
    triangles_.push_back({0, n - 1, 0});
    return 1;
  }
  if (n == 3) {
    triangles_.push_back({0, 1, 2});
    return 1;
  }
  if (verbose) write3D();
  if (n == 4) return triangulateQuadrilateral();

  if (!checkForXYZ()) return fail();
  if (verbose) write2D();
  const std::size_t u = useX_ ? 0 : 1;
  const std::size_t v = useX_ && useY_ ? 1 : 2;
  for (const Point3& p : points_) addPoint(p[u], p[v]);
  return triangulate();
}

// Looks from the foremost corner on one axis: where the corner opposite to it lies in front of one
// of the others it may point inwards, and the cut goes through it.
int Triangulator::triangulateQuadrilateral() {
  if (!checkForXYZ()) {
    std::fputs("error: can`t triangulate polygon (there is no correct point pair!).\n", stderr);
    return 0;
  }
  const std::size_t u = useX_ ? 0 : 1;
  const auto point = [&](int i) -> const Point3& { return points_[idx(i % 4)]; };
  int m = 0;
  for (int i = 1; i < 4; ++i) {
    if (point(i)[u] < point(m)[u]) m = i;
  }
  const double opposite = point(m + 2)[u];
  if (opposite < point(m + 1)[u] || opposite < point(m + 3)[u]) m = (m + 1) % 4;

  triangles_.push_back({m, (m + 1) % 4, (m + 3) % 4});
  triangles_.push_back({(m + 1) % 4, (m + 2) % 4, (m + 3) % 4});
  return 1;
}

int Triangulator::getCount() const {
  const int n = static_cast<int>(points_.size());
  return n > 2 ? n - 2 : 1;
}

int Triangulator::getPoint(int row, int corner) const {
  if (verbose) std::printf("Triangulation: getPoint %d,%d", row, corner);
  const int n = static_cast<int>(points_.size());
  if (reversed_) {
    row = n - row - 3;
    if (verbose) std::printf(" convert row (clockwise) => %d", row);
    // The rows turn counter-clockwise; the outline that the caller gave does not.
    if (corner != 0) corner = 3 - corner;
  }
  const int k = triangles_[idx(row)][idx(corner)];
  if (verbose) std::printf(" result=%d\n", k);
  if (n < 5) return k;
  return reversed_ ? n - k : k - 1;
}

int Triangulator::getPoint(int row, int corner, double& x, double& y, double& z) const {
  const int index = getPoint(row, corner);
  const Point3& p = points_[idx(index)];
  x = p[0];
  y = p[1];
  z = p[2];
  return index;
}

int Triangulator::triangulate() {
  const int n = static_cast<int>(segments_.size()) - 1;
  if (n < 4) return fail();
  connectSegments();
  if (verbose) std::printf("Triangulation: check clockwise order\n");
  reversed_ = clockWiseOrder();
  if (verbose) std::printf(reversed_ ? "wrong direction\n" : "right direction\n");
  if (reversed_) {
    std::reverse(segments_.begin() + 1, segments_.end());
    connectSegments();
  }

  double extent = 0;
  for (const segment_t& s : segments_) {
    extent = std::max({extent, std::abs(s.from.x), std::abs(s.from.y)});
  }
  farAway_.x = farAway_.y = std::max(kInfinity, 2 * extent);

  // A last corner in the place of the first is left out, and its flat triangle put back in the end:
  // a segment without length has no direction to thread it by.
  const int outline = repeatsFirstPoint() ? n - 1 : n;
  segmentCount_ = outline;
  generate_random_ordering(outline);
  if (!construct_trapezoids(outline)) return 0;
  const int pieces = monotonate_trapezoids(outline);
  if (pieces == 0 || !triangulate_monotone_polygons(pieces)) return fail();
  if (outline < n) {
    // The flat triangle at the repeated corner is to be read last, and rows of a clockwise outline
    // are read in reverse.
    triangles_.insert(reversed_ ? triangles_.begin() : triangles_.end(), {n - 1, n, 1});
  }
  if (verbose) std::printf("triangulation OK\n");
  return 1;
}

bool Triangulator::repeatsFirstPoint() const {
  const point_t& first = segments_[1].from;
  const point_t& last = segments_.back().from;
  return first.x == last.x && first.y == last.y;
}

void Triangulator::connectSegments() {
  for (std::size_t i = 1; i + 1 < segments_.size(); ++i) segments_[i].to = segments_[i + 1].from;
  segments_.back().to = segments_[1].from;
}

// At the leftmost point both neighbours lie to the right, so the steeper direction tells the turn.
// It is compared through the cross product: b.v / |b| < a.v / |a| says the same, but the quotients
// of two nearly vertical directions round to the same number.
int Triangulator::clockWiseOrder() const {
  const std::size_t n = segments_.size() - (repeatsFirstPoint() ? 2 : 1);
  std::size_t m = 1;
  for (std::size_t i = 2; i <= n; ++i) {
    if (segments_[i].from.x < segments_[m].from.x) m = i;
  }
  const point_t& corner = segments_[m].from;
  const point_t& next = segments_[m == n ? 1 : m + 1].from;
  const point_t& prev = segments_[m == 1 ? n : m - 1].from;
  const point_t a{next.x - corner.x, next.y - corner.y};
  const point_t b{prev.x - corner.x, prev.y - corner.y};
  // Straight up and straight down: the cross product cannot tell opposite directions.
  if (a.x == 0 && b.x == 0) return b.y < 0 && a.y > 0;
  return b.x * a.y - b.y * a.x > 0;
}

int Triangulator::fail() {
  std::fputs("error: can`t triangulate polygon (error 2).\n", stderr);
  return 0;
}

void Triangulator::write3D() const {
  const File file(std::fopen("tri_3D", "w"));
  for (const Point3& p : points_) {
    std::printf("%f %f %f\n", p[0], p[1], p[2]);
    if (file) std::fprintf(file.get(), "%f %f %f\n", p[0], p[1], p[2]);
  }
}

void Triangulator::write2D() const {
  const File file(std::fopen("tri_2D", "w"));
  if (!file) return;
  for (const Point3& p : points_) {
    if (useX_) std::fprintf(file.get(), " %f", p[0]);
    if (useY_) std::fprintf(file.get(), " %f", p[1]);
    if (useZ_) std::fprintf(file.get(), " %f", p[2]);
    std::fprintf(file.get(), "\n");
  }
}

}  // namespace varimesh
