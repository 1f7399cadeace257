#include "triangulate/triangulator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace varimesh {
namespace {

using Vec3 = std::array<double, 3>;
using Polygon = std::vector<Vec3>;
using Triangle = std::array<int, 3>;
using Random = std::mt19937;
using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

constexpr double kTurn = 2 * 3.14159265358979323846;
constexpr const char* kError2 = "error: can`t triangulate polygon (error 2).\n";
constexpr const char* kNoPair =
    "error: can`t triangulate polygon (there is no correct point pair!).\n";

double uniform(Random& random, double lo, double hi) {
  return lo + (hi - lo) * static_cast<double>(random()) / 4294967296.0;
}

// 0 to n - 1.
int pick(Random& random, std::size_t n) { return static_cast<int>(random() % n); }

Vec3 minus(const Vec3& a, const Vec3& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
double dot(const Vec3& a, const Vec3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
double length(const Vec3& a) { return std::sqrt(dot(a, a)); }
// Twice the area of a triangle as a vector along its normal.
Vec3 doubleArea(const Vec3& a, const Vec3& b, const Vec3& c) {
  const Vec3 u = minus(b, a);
  const Vec3 v = minus(c, a);
  return {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
}

// ---- Outlines, counter-clockwise in the plane z = 0, all of them simple

Polygon ring(int n, const std::function<double(int)>& radius) {
  Polygon p;
  for (int i = 0; i < n; ++i) {
    const double a = kTurn * i / n + 0.3;
    p.push_back({radius(i) * std::cos(a), radius(i) * std::sin(a), 0});
  }
  return p;
}

Polygon convex(int n, Random&) {
  return ring(n, [](int) { return 1.0; });
}

Polygon jaggedStar(int n, Random& random) {
  std::vector<double> radius;
  for (int i = 0; i < n; ++i) radius.push_back(i % 2 ? 1 : uniform(random, 0.05, 0.9));
  return ring(n, [&](int i) { return radius[static_cast<std::size_t>(i)]; });
}

// Teeth with tips on one level, and a back.
Polygon comb(int n, Random& random) {
  Polygon p{{-1.0, 20, 0}};
  for (int i = 0; i < n - 2; ++i) p.push_back({1.0 * i, i % 2 ? 10 : pick(random, 2) * 0.5, 0});
  p.push_back({1.0 * n, 20, 0});
  return p;
}

// Right angles, and runs of corners on straight lines.
Polygon battlement(int n, Random& random) {
  Polygon p;
  for (int i = 0; i + 4 <= n - 2; i += 4) {
    const double h = pick(random, 2) ? 1 : 2;
    for (const auto& [x, y] : {std::pair(0.0, 0.0), {1.0, 0.0}, {2.0, 0.0}, {2.0, h}}) {
      p.push_back({i + x, i % 8 && x == 0 ? 1 : y, 0});
    }
  }
  const double right = p.back()[0] + 1;
  p.push_back({right, 0, 0});
  p.push_back({right, 5, 0});
  p.push_back({0, 5, 0});
  return p;
}

Polygon spiral(int n, Random&) {
  const int half = std::max(4, n / 2);
  Polygon p;
  const auto add = [&](int i, double in) {
    const double a = kTurn * i / 14;
    const double r = 1 + a / kTurn - in;
    p.push_back({r * std::cos(a), r * std::sin(a), 0});
  };
  for (int i = 0; i < half; ++i) add(i, 0);
  for (int i = half - 1; i >= 0; --i) add(i, 0.4);
  return p;
}

const std::vector<std::pair<std::string, Polygon (*)(int, Random&)>> kFamilies = {
    {"convex", convex},
    {"star", jaggedStar},
    {"comb", comb},
    {"battlement", battlement},
    {"spiral", spiral}};

// Corners in between on some edges.
Polygon withCollinearRuns(const Polygon& p, Random& random) {
  Polygon q;
  for (std::size_t i = 0; i < p.size(); ++i) {
    const Vec3& a = p[i];
    const Vec3& b = p[(i + 1) % p.size()];
    const int parts = pick(random, 3) + 1;
    for (int k = 0; k < parts; ++k) {
      const double t = 1.0 * k / parts;
      q.push_back({a[0] + t * (b[0] - a[0]), a[1] + t * (b[1] - a[1]), 0});
    }
  }
  return q;
}

// Into a coordinate plane or, from 3 on, a tilted one; coordinates become single precision.
Polygon placed(const Polygon& p, unsigned plane, bool backwards) {
  constexpr Vec3 kU[] = {{1, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0.8, 0.36, 0.48}, {0, 0.28, 0.96}};
  constexpr Vec3 kV[] = {{0, 1, 0}, {0, 0, 1}, {0, 0, 1}, {-0.6, 0.48, 0.64}, {0.6, 0.768, -0.224}};
  Polygon q;
  for (const Vec3& c : p) {
    Vec3 r;
    for (std::size_t k = 0; k < 3; ++k) {
      r[k] = static_cast<float>(c[0] * kU[plane][k] + c[1] * kV[plane][k] + (plane > 2 ? 3 : 0));
    }
    q.push_back(r);
  }
  if (backwards) std::reverse(q.begin(), q.end());
  return q;
}

class TriangulatorTest : public testing::Test {
 protected:
  void SetUp() override { Triangulator::fixedSeed = 1; }
  void TearDown() override {
    Triangulator::fixedSeed.reset();
    Triangulator::verbose = 0;
  }

  int run(const Polygon& p) {
    triangulator.reset();
    for (const Vec3& c : p) triangulator.addPoint(c[0], c[1], c[2]);
    return triangulator.run();
  }

  std::vector<Triangle> triangles() const {
    std::vector<Triangle> rows;
    for (int i = 0; i < triangulator.getCount(); ++i) {
      rows.push_back(
          {triangulator.getPoint(i, 0), triangulator.getPoint(i, 1), triangulator.getPoint(i, 2)});
    }
    return rows;
  }

  // The triangles tile the polygon: every edge of the outline belongs to one triangle, in its
  // direction, every other edge to two, in both; all turn the way of the outline, and the areas add
  // up.
  void expectTiling(const Polygon& p) {
    const int n = static_cast<int>(p.size());
    const auto at = [&](int i) { return p[static_cast<std::size_t>(i)]; };
    ASSERT_EQ(run(p), 1);
    const std::vector<Triangle> rows = triangles();
    ASSERT_EQ(rows.size(), p.size() - 2);

    Vec3 whole{};
    double extent = 0;
    for (int i = 1; i + 1 < n; ++i) {
      const Vec3 part = doubleArea(at(0), at(i), at(i + 1));
      for (std::size_t k = 0; k < 3; ++k) whole[k] += part[k];
      extent = std::max(extent, length(minus(at(i), at(0))));
    }
    std::map<std::pair<int, int>, int> edges;
    double sum = 0;
    for (const Triangle& t : rows) {
      for (std::size_t k = 0; k < 3; ++k) {
        ASSERT_TRUE(t[k] >= 0 && t[k] < n);
        ++edges[{t[k], t[(k + 1) % 3]}];
      }
      const Vec3 area = doubleArea(at(t[0]), at(t[1]), at(t[2]));
      ASSERT_GE(dot(area, whole) / length(whole), -1e-6 * extent * extent);
      sum += length(area);
    }
    EXPECT_NEAR(sum / length(whole), 1, 1e-5 * extent * extent / length(whole) + 1e-5);
    for (const auto& [edge, count] : edges) {
      const auto [from, to] = edge;
      ASSERT_EQ(count, 1);
      ASSERT_EQ(edges.count({to, from}), to == (from + 1) % n ? 0u : 1u);
    }
    for (int i = 0; i < n; ++i) ASSERT_EQ(edges.count({i, (i + 1) % n}), 1u);
  }

  Triangulator triangulator;
};

// ---- Few corners

TEST_F(TriangulatorTest, UpToThreeCornersNeedNoPlane) {
  CaptureStderr();
  EXPECT_EQ(run({}), 0);
  EXPECT_EQ(GetCapturedStderr(), "");
  EXPECT_EQ(run({{1, 1, 1}, {1, 1, 1}}), 1);
  EXPECT_EQ(triangles(), (std::vector<Triangle>{{0, 1, 0}}));
  EXPECT_EQ(run({{1, 1, 1}, {1, 1, 1}, {1, 1, 1}}), 1);
  EXPECT_EQ(triangles(), (std::vector<Triangle>{{0, 1, 2}}));
}

TEST_F(TriangulatorTest, Quadrilaterals) {
  EXPECT_EQ(run({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}), 1);
  EXPECT_EQ(triangles(), (std::vector<Triangle>{{0, 1, 3}, {1, 2, 3}}));
  // A dart is cut through its inward corner.
  EXPECT_EQ(run({{0, 0, 0}, {4, 1, 0}, {1, 1, 0}, {1, 4, 0}}), 1);
  EXPECT_EQ(triangles(), (std::vector<Triangle>{{1, 2, 0}, {2, 3, 0}}));
}

// ---- The plane

TEST_F(TriangulatorTest, CrossingOfSegments) {
  const auto crossing = Triangulator::checkCrossing;
  EXPECT_EQ(crossing(0, 0, 2, 2, 0, 2, 2, 0), 1);
  EXPECT_EQ(crossing(0, 0, 2, 0, 1, -1, 1, 1), 1);  // a level first segment
  EXPECT_EQ(crossing(0, 0, 2, 0, 2, 0, 3, 1), 1);   // an end point in common
  EXPECT_EQ(crossing(0, 0, 2, 0, 0, 0, -1, 1), 1);
  EXPECT_EQ(crossing(0, 0, 2, 1, 0, 0, -1, 1), 1);
  EXPECT_EQ(crossing(0, 0, 2, 0, 3, -1, 3, 1), 0);  // beside the first
  EXPECT_EQ(crossing(0, 0, 0, 2, -1, 3, 1, 3), 0);
  EXPECT_EQ(crossing(0, 0, 2, 0, 1, 1, 1, 2), 0);  // the second falls short
  EXPECT_EQ(crossing(0, 0, 2, 2, 1, 1, 3, 3), 2);  // parallel, even on one line
  EXPECT_EQ(crossing(5, 5, 5, 5, 0, 0, 1, 0), 1);  // no first segment
  EXPECT_EQ(crossing(0, 0, 1, 2, 7, 7, 7, 7), 2);  // no second segment
}

TEST_F(TriangulatorTest, TakesThePlaneWithoutCrossings) {
  // A bow tie seen from above, a plain outline from the front.
  Polygon ribbon{{0, 0, 0}, {2, 2, 0}, {3, 1, 1}, {2, 0, 2}, {0, 2, 2}};
  ASSERT_EQ(run(ribbon), 1);
  for (Vec3& c : ribbon) c[1] = 0;
  expectTiling(ribbon);
}

TEST_F(TriangulatorTest, RefusesOutlinesThatCrossOrCoincideInEveryPlane) {
  const std::vector<std::pair<Polygon, std::string>> cases = {
      {{{0, 0, 0}, {1, 1, 0}, {1, 0, 0}, {0, 1, 0}}, kNoPair},
      {{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}, kNoPair},
      {{{0, 0, 0}, {2, 2, 0}, {2, 0, 0}, {1, -1, 0}, {0, 2, 0}}, kError2},
      {{{0, 0, 0}, {2, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}, kError2},
      {{{1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}}, kError2}};
  for (const auto& [polygon, message] : cases) {
    CaptureStderr();
    EXPECT_EQ(run(polygon), 0);
    EXPECT_EQ(GetCapturedStderr(), message);
  }
}

// A simple outline of 50 to 90 corners, of which some are moved: away, onto an edge or its
// extension, or to within a hair of it. Single precision, of any size.
std::vector<Point2> disturbedOutline(unsigned seed, Random& random) {
  const double scale = std::pow(10, uniform(random, -30, 30));
  const double shear = pick(random, 2) ? uniform(random, -3, 3) : 0;
  const Polygon p = kFamilies[seed % kFamilies.size()].second(50 + pick(random, 40), random);
  std::vector<Point2> corners;
  for (const Vec3& c : p) corners.push_back({c[0] + shear * c[1], c[1]});
  for (int k = pick(random, 4); k > 0; --k) {
    const std::size_t edge = random() % corners.size();
    const Point2 a = corners[edge];
    const Point2 b = corners[(edge + 1) % corners.size()];
    const double fine = std::pow(2, uniform(random, -50, -15));
    const double hair = fine * pick(random, 3);
    const double ts[] = {0, 0.5, 1 + hair, uniform(random, -1, 2)};
    const double t = ts[random() % 4];
    const double beside = hair * pick(random, 3);
    corners[random() % corners.size()] = {a[0] + t * (b[0] - a[0]),
                                          a[1] + t * (b[1] - a[1]) + beside};
  }
  if (seed % 10 == 0) corners.back() = corners.front();
  for (Point2& c : corners) {
    c = {static_cast<float>(c[0] * scale), static_cast<float>(c[1] * scale)};
  }
  return corners;
}

bool edgesCross(const std::vector<Point2>& p, std::size_t i, std::size_t j) {
  const Point2& d = p[(j + 1) % p.size()];
  return j > i + 1 && Triangulator::checkCrossing(p[i][0], p[i][1], p[i + 1][0], p[i + 1][1],
                                                  p[j][0], p[j][1], d[0], d[1]) == 1;
}

EdgeOrder::Verdict examine(const std::vector<Point2>& corners) {
  constexpr double kFar = std::numeric_limits<double>::infinity();
  std::vector<EdgeBox> boxes;
  for (int i = 0; i < static_cast<int>(corners.size()); ++i) {
    boxes.push_back({{-kFar, -kFar}, {kFar, kFar}, i});
  }
  return EdgeOrder(Outline(corners), boxes).examine();
}

// Large polygons are swept instead of compared pair by pair; the answer must be the same. The order
// of the edges, which is asked about the largest, may have none, but not a wrong one.
TEST_F(TriangulatorTest, SweepsAnswerLikeAllPairs) {
  std::map<std::pair<bool, EdgeOrder::Verdict>, int> verdicts;
  for (unsigned seed = 0; seed < 2000; ++seed) {
    Random random(seed);
    const std::vector<Point2> p = disturbedOutline(seed, random);
    bool crosses = false;
    bool coincides = false;
    triangulator.reset();
    for (std::size_t i = 0; i < p.size(); ++i) {
      triangulator.addPoint(p[i][0], p[i][1], 0);
      for (std::size_t j = i + 1; j < p.size(); ++j) {
        if (i == 0 && j == p.size() - 1) continue;
        coincides |= p[i] == p[j];
        crosses |= edgesCross(p, i, j);
      }
    }
    ASSERT_EQ(triangulator.checkForXYZ(), !crosses && !coincides) << "seed " << seed;
    ++verdicts[{crosses, examine(p)}];
  }
  using enum EdgeOrder::Verdict;
  EXPECT_EQ((verdicts[{true, clear}]), 0);
  EXPECT_EQ((verdicts[{false, crossing}]), 0);
  EXPECT_GT((verdicts[{false, clear}]), 400);
  EXPECT_GT((verdicts[{true, crossing}]), 400);
  EXPECT_LT((verdicts[{false, unknown}]), 200);
}

// Where most edges run askew and overlap with most others, only their order is a fast way to know.
TEST_F(TriangulatorTest, OrderKnowsEdgesThatRunAskew) {
  Random random(3);
  std::vector<Point2> p;
  for (const Vec3& c : comb(20'000, random)) {
    p.push_back({static_cast<float>(c[0] + 1000 * c[1]), static_cast<float>(c[1] * 1000)});
  }
  EXPECT_EQ(examine(p), EdgeOrder::Verdict::clear);
  // A tooth through its neighbour.
  p[10'001][0] += 10'000;
  EXPECT_EQ(examine(p), EdgeOrder::Verdict::crossing);
}

// ---- Tiling

TEST_F(TriangulatorTest, TilesSimplePolygons) {
  for (const auto& [name, family] : kFamilies) {
    for (unsigned seed = 0; seed < 300; ++seed) {
      SCOPED_TRACE(name + " " + std::to_string(seed));
      Random random(seed);
      Triangulator::fixedSeed = seed;
      Polygon p = family(6 + pick(random, seed % 20 ? 40 : 400), random);
      if (seed % 3 == 0) p = withCollinearRuns(p, random);
      std::rotate(p.begin(), p.begin() + pick(random, p.size()), p.end());
      expectTiling(placed(p, seed % 5, pick(random, 2)));
      if (HasFatalFailure()) return;
    }
  }
}

// The walk over the trapezoids of a spiral is as deep as it is long.
TEST_F(TriangulatorTest, TilesLargePolygons) {
  for (const auto& [name, family] : kFamilies) {
    SCOPED_TRACE(name);
    Random random(7);
    expectTiling(placed(family(6000, random), 3, true));
  }
}

TEST_F(TriangulatorTest, ScaleIsFreeAboveTheTolerance) {
  Random random(5);
  for (const double scale : {1e-3, 1e6, 1e12, 1e30}) {
    Polygon p = convex(12, random);
    for (Vec3& c : p) c = {c[0] * scale, c[1] * scale, 0};
    expectTiling(placed(p, 0, true));
  }
  // All corners are level, and none is left of another.
  Polygon p = jaggedStar(12, random);
  for (Vec3& c : p) c = {c[0] * 1e-8, c[1] * 1e-8, 0};
  CaptureStderr();
  EXPECT_EQ(run(p), 0);
  EXPECT_NE(GetCapturedStderr(), "");
}

// Past the check of the plane, a repeated first corner costs no more than a flat triangle.
TEST_F(TriangulatorTest, RepeatedFirstCornerAtTheEnd) {
  for (const bool backwards : {false, true}) {
    Random random(2);
    Polygon p = placed(jaggedStar(12, random), 0, backwards);
    p.push_back(p.front());
    triangulator.reset();
    for (const Vec3& c : p) {
      triangulator.addPoint(c[0], c[1], c[2]);
      triangulator.addPoint(c[0], c[1]);
    }
    ASSERT_EQ(triangulator.triangulate(), 1);
    int flat = 0;
    for (const Triangle& t : triangles()) {
      flat += std::count(t.begin(), t.end(), 0) + std::count(t.begin(), t.end(), 12) == 2;
    }
    EXPECT_EQ(flat, 1);
  }
}

// ---- Bad input

// Whatever the outline, crossing or not: an answer, a message with every 0, and indices of corners.
TEST_F(TriangulatorTest, SurvivesGarbage) {
  for (unsigned seed = 0; seed < 4000; ++seed) {
    Random random(seed);
    Triangulator::fixedSeed = seed;
    const int n = 5 + pick(random, 40);
    const double scale = seed % 4 == 0 ? 3e38 : std::pow(10, uniform(random, -8, 8));
    triangulator.reset();
    for (int i = 0; i < n; ++i) {
      const double x = (seed % 2 ? pick(random, 5) / 5.0 : uniform(random, -1, 1)) * scale;
      const double y = (seed % 3 ? pick(random, 5) / 5.0 : uniform(random, -1, 1)) * scale;
      triangulator.addPoint(x, y, 0);
      triangulator.addPoint(x, y);
    }
    // Not `run`, whose check of the plane would keep nearly all of these away.
    CaptureStderr();
    const int ok = triangulator.triangulate();
    ASSERT_EQ(GetCapturedStderr() == "", ok == 1) << "seed " << seed;
    if (!ok) continue;
    for (const Triangle& t : triangles()) {
      for (const int corner : t) ASSERT_TRUE(corner >= 0 && corner < n);
    }
  }
}

// ---- Verbose output

TEST_F(TriangulatorTest, VerboseReportsEveryStep) {
  const auto here = std::filesystem::current_path();
  const auto scratch = std::filesystem::temp_directory_path() / "varimesh_triangulator_test";
  std::filesystem::create_directories(scratch);
  std::filesystem::current_path(scratch);
  Triangulator::verbose = 1;
  CaptureStdout();
  const int ok = run({{0, 4, 0}, {0, 0, 0}, {0, 0, 4}, {0, 3, 3}, {0, 3, 4}});
  const int corner = triangulator.getPoint(0, 1);
  const std::string report = GetCapturedStdout();
  const auto fileText = [](const char* name) {
    std::ostringstream text;
    text << std::ifstream(name).rdbuf();
    return text.str();
  };
  const std::string points = fileText("tri_3D");
  const std::string projected = fileText("tri_2D");
  std::filesystem::current_path(here);
  std::filesystem::remove_all(scratch);

  EXPECT_EQ(ok, 1);
  EXPECT_EQ(points,
            "0.000000 4.000000 0.000000\n0.000000 0.000000 0.000000\n0.000000 0.000000 4.000000\n"
            "0.000000 3.000000 3.000000\n0.000000 3.000000 4.000000\n");
  EXPECT_EQ(projected,
            " 4.000000 0.000000\n 0.000000 0.000000\n 0.000000 4.000000\n 3.000000 3.000000\n"
            " 3.000000 4.000000\n");
  const std::string start = "Triangulator::reset();\n" + points + "check point 0 with 1 2";
  EXPECT_EQ(report.substr(0, start.size()), start);
  EXPECT_NE(
      report.find("check point 3 with 4\ncheck point 4 with\n"
                  "tri: isok: x0,y1,z1 xy0,xz0,yz1\ntri: isok: x0,y1,z1\n"
                  "Triangulation: check clockwise order\nwrong direction\ntriangulation OK\n"),
      std::string::npos)
      << report;
  // The stored value counts slots of the reversed outline.
  EXPECT_NE(report.find("Triangulation: getPoint 0,1 convert row (clockwise) => 2 result=" +
                        std::to_string(5 - corner) + "\n"),
            std::string::npos)
      << report;
}

}  // namespace
}  // namespace varimesh
