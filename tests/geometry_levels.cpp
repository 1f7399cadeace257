// The levels of detail, against the plain form of the rules.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "geometry_run.h"
#include "meshes.h"

namespace varimesh {
namespace {

using meshes::Mesh;
using meshes::pick;
using meshes::Random;
using meshes::uniform;
using plain::Corner;
using plain::Input;
using plain::Outline;
using plain::Point;

struct Case {
  std::vector<Point> points;
  std::vector<Input> inputs;
  std::vector<ShapeAttributes> attributes;  // beside inputs
  plain::Rules rules;
};

template <class T, std::size_t n>
T oneOf(Random& random, const std::array<T, n>& values) {
  return values[static_cast<std::size_t>(pick(random, static_cast<int>(n)))];
}

std::vector<Point> makePoints(Random& random, int n) {
  const int kind = pick(random, 9);
  const int side = 2 + pick(random, 5);
  const auto coordinate = [&](int axis) -> double {
    switch (kind) {
      case 0: return uniform(random, -1, 1);
      case 1: return pick(random, side);                                       // many ties
      case 2: return pick(random, 3) + uniform(random, -1, 1) * 1e-4;          // clusters
      case 3: return axis == 2 ? 0 : pick(random, 2 * side);                   // a plane
      case 4: return 1 + std::ldexp(pick(random, 4), -23);                     // neighbours
      case 5: return std::ldexp(pick(random, 2) ? 1 : -1, -pick(random, 20));  // deep cells
      case 6: return std::ldexp(pick(random, 8), -149);                        // denormals
      case 7: return 1e6 + pick(random, 100) * 0.125;                          // far off
      default: return axis == 0 ? uniform(random, 0, 1) : 0;                   // a line
    }
  };
  std::vector<Point> points(static_cast<std::size_t>(n));
  for (Point& p : points) {
    for (int axis = 0; axis < 3; ++axis) {
      p[static_cast<std::size_t>(axis)] = static_cast<float>(coordinate(axis));
    }
  }
  for (int i = pick(random, 4) == 0 ? n / 4 : 0; i > 0; --i) {
    Point& copy = points[static_cast<std::size_t>(pick(random, n))];
    copy = points[static_cast<std::size_t>(pick(random, n))];
    for (float& x : copy) x = x == 0 ? -x : x;
  }
  return points;
}

// Polygons between points anywhere, or close to each other in the list, some of them again, turned
// round, reversed or cut short.
Mesh makeMesh(Random& random) {
  static constexpr std::array noises = {0.0, 0.02, 0.1, 0.5};
  static constexpr std::array sizes = {8, 8, 8, 60, 60, 400};
  const int kind = pick(random, 8);
  const int size = 1 + pick(random, pick(random, 8) == 0 ? 20 : 6);
  const double noise = oneOf(random, noises);
  const auto seed = static_cast<unsigned>(pick(random, 1000));
  switch (kind) {
    case 0: return meshes::noisyGrid(size, noise, seed);
    case 1: return meshes::sphere(1 + size, 3 + size, seed % 2 == 0);
    default: break;
  }
  Mesh mesh;
  const int n = 2 + pick(random, oneOf(random, sizes));
  mesh.points = makePoints(random, n);
  const bool near = pick(random, 2) == 0;
  for (int i = 1 + pick(random, n); i > 0; --i) {
    std::vector<int> polygon;
    const int first = pick(random, n);
    for (int corners = 2 + pick(random, 3); corners > 0; --corners) {
      polygon.push_back(near ? (first + pick(random, 5)) % n : pick(random, n));
    }
    mesh.polygons.push_back(polygon);
    if (pick(random, 4) != 0) continue;
    std::rotate(polygon.begin(), polygon.begin() + 1, polygon.end());
    if (pick(random, 2) == 0) std::reverse(polygon.begin(), polygon.end());
    if (pick(random, 2) == 0 && polygon.size() > 2) polygon.pop_back();
    mesh.polygons.push_back(polygon);
  }
  return mesh;
}

Case makeCase(unsigned seed) {
  static constexpr std::array<std::array<float, 3>, 9> weights = {{{8, 1, 0},
                                                                   {1, 0, 0},
                                                                   {0, 1, 0},
                                                                   {0, 0, 1},
                                                                   {1, 1, 1},
                                                                   {0, 0, 0},
                                                                   {-1, -1, -1},
                                                                   {0.3F, 0, 2},
                                                                   {-1, 1, 0}}};
  static constexpr std::array<float, 8> minDiffs = {0.2F, 0.2F, 0.01F, 0.1F, 0.5F, 0.9F, 0, -0.3F};
  static constexpr std::array<float, 5> cosines = {0.98480773F, 0.98480773F, 0.5F, 1, -1};
  static constexpr std::array shares = {3, 30, 60, 100};  // percent
  static constexpr std::array bindings = {OVERALL, PER_FACE_INDEXED, PER_VERTEX_INDEXED};
  Random random(seed);
  Case result;
  result.rules.weights = oneOf(random, weights);
  result.rules.minDiff = oneOf(random, minDiffs);
  result.rules.splitCosinus = oneOf(random, cosines);
  result.rules.nolines = pick(random, 5) == 0;
  result.rules.noquads = pick(random, 5) == 0;
  if (pick(random, 5) == 0) result.rules.errorRange = 7;
  if (pick(random, 5) == 0) result.rules.cameraHeightAngle = 1.5F;

  const Mesh mesh = makeMesh(random);
  result.points = mesh.points;
  for (int shapes = 1 + pick(random, 3); shapes > 0; --shapes) {
    Input input;
    input.shapeType = 1 + (pick(random, 4) == 0 ? 1 : 0);
    input.vertexOrdering = pick(random, 3);
    ShapeAttributes attributes;
    attributes.materialBinding = oneOf(random, bindings);
    attributes.normalBinding = oneOf(random, bindings);
    attributes.hasMaterials = attributes.materialBinding != OVERALL;
    attributes.hasNormals = attributes.normalBinding != OVERALL;
    attributes.hasTextureCoords = pick(random, 2) == 0;
    const int share = oneOf(random, shares);  // the other polygons' points may stay unused
    for (const auto& polygon : mesh.polygons) {
      if (pick(random, 100) >= share) continue;
      Outline outline;
      const auto number = [&](bool isThere, int binding, int Corner::*member) {
        if (!isThere) return -1;
        const bool repeat = binding == PER_FACE_INDEXED && !outline.empty();
        return repeat ? outline.front().*member : pick(random, 10);
      };
      for (const int point : polygon) {
        outline.push_back(
            {point, number(attributes.hasMaterials, attributes.materialBinding, &Corner::material),
             number(attributes.hasNormals, attributes.normalBinding, &Corner::normal),
             number(attributes.hasTextureCoords, PER_VERTEX_INDEXED, &Corner::texture)});
      }
      if (input.shapeType == 1) {
        input.outlines.push_back(outline);
        continue;
      }
      for (std::size_t i = 0; i + 1 < outline.size(); ++i) {
        input.outlines.push_back({outline[i], outline[i + 1]});
      }
    }
    result.inputs.push_back(input);
    result.attributes.push_back(attributes);
  }
  return result;
}

void compareWithPlainLevels(const Case& c) {
  const RulesInForce rules(c.rules);
  const plain::Result expected = plain::generate(c.points, c.inputs, c.rules);
  const auto set = makeCoordSet(c.points);
  ASSERT_EQ(set->count, expected.count);
  for (std::size_t i = 0; i < c.inputs.size(); ++i) {
    const plain::Levels& levels = expected.shapes[i];
    const LevelRun run = runLevels(*set, c.inputs[i], c.attributes[i]);
    const std::size_t common = std::min(run.levels.size(), levels.size());
    for (std::size_t k = 0; k < common; ++k) {
      ASSERT_EQ(describe(*run.levels[k], run.used[k]),
                describe(levels[k], c.inputs[i].shapeType, c.attributes[i]))
          << "level " << k << " of shape " << i;
    }
    ASSERT_EQ(run.levels.size(), levels.size()) << "shape " << i;
    ASSERT_EQ(set->count, expected.count);
  }
}

TEST(Levels, AreThoseOfThePlainRules) {
  for (unsigned seed = 0; seed < 4000; ++seed) {
    compareWithPlainLevels(makeCase(seed));
    if (HasFatalFailure()) FAIL() << "seed " << seed;
  }
}

// Many faces at few points, so that the lists of faces at a point are too long to be compared one
// by one. Either few points with quadrangles everywhere, or a dozen hubs that meet in triangles and
// segments only, each with many quadrangles of its own.
Case makeCrowdedCase(unsigned seed) {
  constexpr int hubs = 12;
  Random random(seed);
  const bool withHubs = pick(random, 2) == 0;
  const int n = withHubs ? 60 : 16 + pick(random, 8);
  Case c;
  c.rules.splitCosinus = -1;
  c.rules.minDiff = 0.5F;
  for (int i = 0; i < n; ++i) {
    c.points.emplace_back();
    for (float& x : c.points.back()) x = static_cast<float>(uniform(random, -1, 1));
  }
  std::vector<std::vector<int>> polygons;
  for (int i = 0; i < 1600; ++i) {
    std::vector<int> polygon;
    const int size = std::max(2, 4 - pick(random, 12) / 8 - pick(random, 12) / 9);
    for (int k = 0; k < size; ++k) {
      const bool isHub = withHubs && (size < 4 || k == 0) && k < 3;
      polygon.push_back(isHub ? pick(random, hubs)
                              : pick(random, n - hubs) + (withHubs ? hubs : 0));
    }
    if (i > 0 && pick(random, 3) == 0) {
      polygon = polygons[static_cast<std::size_t>(pick(random, i))];
      std::rotate(polygon.begin(), polygon.begin() + 1, polygon.end());
      if (pick(random, 2) == 0) std::reverse(polygon.begin(), polygon.end());
      if (pick(random, 2) == 0 && polygon.size() > 2) polygon.pop_back();
    }
    polygons.push_back(polygon);
  }
  // As a scene gives them, or in any order.
  if (pick(random, 2) == 0) {
    std::stable_sort(polygons.begin(), polygons.end(),
                     [](const auto& a, const auto& b) { return a.size() > b.size(); });
  }
  c.attributes.emplace_back();
  c.attributes[0].hasTextureCoords = true;
  c.inputs.emplace_back();
  c.inputs[0].vertexOrdering = pick(random, 2);
  for (const auto& polygon : polygons) {
    Outline outline;
    for (const int point : polygon) outline.push_back({point, -1, -1, pick(random, 100000)});
    c.inputs[0].outlines.push_back(outline);
  }
  return c;
}

TEST(Levels, OfCrowdedPointsAreThoseOfThePlainRules) {
  for (unsigned seed = 0; seed < 100; ++seed) {
    compareWithPlainLevels(makeCrowdedCase(seed));
    if (HasFatalFailure()) FAIL() << "seed " << seed;
  }
}

// P and Q share the deepest cell. Moving Q to P changes two large triangles by w/2 and -w/2, and a
// quadrangle by so little that it counts only when it is added after them; moving P to Q changes
// one triangle by still less. The quadrangle is the newest face, so it comes first and is lost.
TEST(Levels, SumErrorsFromTheNewestFaceOn) {
  const float w = std::ldexp(1.0F, 20);
  const float t = std::ldexp(1.0F, -50);
  enum { P, Q, X1, Y1, X2, Y2, X3, Y3, R, X4, Y4 };
  Case c;
  // The last two only make the box cut between 5 and 6, and along the plane of y = 0.
  c.points = {{5, 0, 0},      {6, 0, 0},     {2, 0, 0},     {2, w, 0}, {9, 0, 0},
              {9, w, 0},      {16.5F, 0, 0}, {16.5F, t, 0}, {6, t, 0}, {40, 0, 0},
              {40, t / 2, 0}, {-w, -w, 0},   {w, w, 0}};
  c.rules.minDiff = 0;
  c.rules.weights = {1, 0, 0};
  c.attributes.emplace_back();
  c.inputs.emplace_back();
  auto& outlines = c.inputs[0].outlines;
  for (const int more : {0, 20}) {  // faces without area at Q: its list grows
    SCOPED_TRACE(more);
    outlines.clear();
    for (int i = 0; i < more; ++i) {
      const int point = static_cast<int>(c.points.size());
      c.points.push_back({100.0F + 64 * static_cast<float>(i), 0, 0});
      outlines.push_back({{Q}, {X4}, {point}});
    }
    const std::vector<Outline> faces = {{{X1}, {Q}, {Y1}}, {{X2}, {Q}, {Y2}}, {{X4}, {P}, {Y4}}};
    outlines.insert(outlines.end(), faces.begin(), faces.end());
    outlines.push_back({{X3}, {Q}, {R}, {Y3}});
    const RulesInForce rules(c.rules);
    const auto set = makeCoordSet(c.points);
    const LevelRun run = runLevels(*set, c.inputs[0]);
    const std::string text = describe(*run.levels[1], run.used[1]);
    EXPECT_NE(text.find("2,0,3,-1"), std::string::npos) << text;
    compareWithPlainLevels(c);
  }
}

// The hub has the least number, so all segments stand in its list.
TEST(Levels, OfAStarOfSegmentsAreThoseOfThePlainRules) {
  Case c;
  c.points = {{-1, -1, -1}};
  c.attributes.emplace_back();
  c.attributes[0].hasTextureCoords = true;
  c.inputs.emplace_back();
  c.inputs[0].vertexOrdering = 1;
  constexpr int rays = 150;
  for (int i = 1; i <= rays; ++i) c.points.push_back({static_cast<float>(i), 1, 0});
  for (int i = 1; i <= rays; ++i) c.inputs[0].outlines.push_back({{0, -1, -1, i}, {i}});
  for (int i = rays; i >= 1; --i) c.inputs[0].outlines.push_back({{i}, {0, -1, -1, 2 * i}});
  for (const int type : {1, 2}) {
    SCOPED_TRACE(type);
    c.inputs[0].shapeType = type;
    compareWithPlainLevels(c);
  }
}

// What the index answers is what a walk through all faces would find.
TEST(FaceIndex, AnswersAsAWalkWould) {
  meshes::Random random(1);
  for (int round = 0; round < 400; ++round) {
    SCOPED_TRACE(round);
    const int ordering = round % 2;
    const int size = 2 + round / 2 % 2;
    const auto makeFace = [&](int n) {
      std::array<CoordId, 7> points = {0, 1, 2, 3, 4, 5, 6};
      Corners corners = {noCoord, noCoord, noCoord, noCoord};
      for (unsigned i = 0; i < static_cast<unsigned>(n); ++i) {
        std::swap(points[i],
                  points[i + static_cast<unsigned>(meshes::pick(random, 7 - static_cast<int>(i)))]);
        corners[i] = points[i];
      }
      return corners;
    };
    FaceIndex index(ordering);
    std::vector<Corners> bigger;
    std::vector<Sequence> sequences;
    std::vector<Corners> equals;
    for (int i = 0; i < 6; ++i) {
      bigger.push_back(makeFace(size + 1 + meshes::pick(random, 4 - size)));
      sequences.push_back(static_cast<Sequence>(meshes::pick(random, 100)));
      index.addBigger(bigger.back(), sequences.back());
      const Corners face = makeFace(size);
      if (index.findEqual(face) != noShape) continue;
      index.addEqual(face, static_cast<ShapeId>(equals.size()));
      equals.push_back(face);
    }
    for (int i = 0; i < 100; ++i) {
      const Corners face = makeFace(size);
      const auto sequence = static_cast<Sequence>(meshes::pick(random, 100));
      bool isWithin = false;
      for (std::size_t k = 0; k < bigger.size(); ++k) {
        isWithin =
            isWithin || (sequences[k] < sequence && isEquivOrSubsetOf(face, bigger[k], ordering));
      }
      EXPECT_EQ(index.isWithinBigger(face, sequence), isWithin);
      ShapeId equal = noShape;
      for (ShapeId k = 0; k < equals.size(); ++k) {
        if (isEquivOrSubsetOf(face, equals[k], ordering)) equal = k;
      }
      EXPECT_EQ(index.findEqual(face), equal);
    }
  }
}

Case makeLineCase(const std::vector<float>& places) {
  Case c;
  c.inputs.emplace_back();
  c.inputs[0].shapeType = 2;
  c.attributes.emplace_back();
  for (const float x : places) {
    c.points.push_back({x, 0, 0});
    const int i = static_cast<int>(c.points.size());
    if (i > 1) c.inputs[0].outlines.push_back({{i - 2}, {i - 1}});
  }
  return c;
}

// Two layers of cells have to go, but of the second only one cell: 12 keeps its depth, and so does
// the range.
//   1-2 ......... 9 ... 12
TEST(Levels, EndWithinALayer) {
  Case c = makeLineCase({2, 1, 9, 12});
  c.rules.minDiff = 0.2F;
  compareWithPlainLevels(c);
}

TEST(Levels, RangeFollowsFromTheCellSize) {
  // 0 and 2 share a quarter of the box; when it has collapsed, the octree of used points has
  // depth 3.
  const Case c = makeLineCase({0, 2, 10});
  const auto set = makeCoordSet(c.points);
  const LevelRun run = runLevels(*set, c.inputs[0]);
  ASSERT_EQ(run.levels.size(), 3U);
  EXPECT_NEAR(run.levels[0]->range, 261.355, 0.01);
  EXPECT_NEAR(run.levels[1]->range, 4 * 261.355, 0.04);
  EXPECT_EQ(run.levels[2]->range, 0);
  EXPECT_EQ(OctreeCoordSet().getRange(), 0);

  const auto rangeWith = [&](float angle, float error) {
    CoordSet::cameraHeightAngle = angle;
    CoordSet::errorRange = error;
    return set->getRange();
  };
  const auto failed = testing::ExitedWithCode(1);
  EXPECT_EXIT(rangeWith(0, 2), failed, "error: illegal cameraheightangle >0.000000<\n");
  EXPECT_EXIT(rangeWith(1, 1e-45F), failed,
              "error: can't calculate lod-rangefactor\n"
              "       with heightAngle >1.000000< and errorrange >0.000000<\n");
}

// Points that a careless octree would not separate, or whose sums and squares overflow.
TEST(Octree, TakesPointsFromTheEndsOfTheNumbers) {
  using Limits = std::numeric_limits<float>;
  const float big = Limits::max();
  const float least = Limits::denorm_min();
  const float next = std::nextafter(1.0F, 2.0F);
  const float before = std::nextafter(1.0F, 0.0F);
  const std::vector<std::vector<float>> lists = {
      {before, 1, next},
      {big, -big, std::nextafter(big, 0.0F), -std::nextafter(big, 0.0F)},
      {big, std::nextafter(big, 0.0F)},
      {0, least, 2 * least, -least, -3 * least},
      {big, 0, least, 2 * least, 1, next}};
  for (const auto& list : lists) {
    SCOPED_TRACE(list[0]);
    std::vector<Point> points;
    for (const float x : list) {
      for (const float y : list) points.push_back({x, y, list[points.size() % list.size()]});
    }
    const auto set = makeCoordSet(points);
    EXPECT_EQ(set->count, static_cast<int>(points.size()));
    for (const int shapeType : {1, 2}) {
      Input input;
      input.shapeType = shapeType;
      const int n = static_cast<int>(points.size());
      for (int i = 0; i < n; ++i) {
        input.outlines.push_back({{i}, {(i + 1) % n}});
        if (shapeType == 1) input.outlines.back().push_back({(i + 3) % n});
      }
      const LevelRun run = runLevels(*set, input);
      EXPECT_LE(run.used.back(), 1);
      EXPECT_LT(run.levels.size(), 300U);
      for (const auto& level : run.levels) {
        EXPECT_TRUE(std::isfinite(level->range) && std::isfinite(level->getSphere()));
      }
    }
  }
}

TEST(Octree, MergesEqualPoints) {
  OctreeCoordSet set;
  EXPECT_EQ(set.insert(Coord(0, 1, -0.0F)), set.insert(Coord(-0.0F, 1, 0)));
  EXPECT_EQ(set.count, 1);
  for (int i = 0; i < 1000000; ++i) set.insert(Coord(1, 2, 3));
  EXPECT_EQ(set.count, 2);
  EXPECT_EQ(set.getMaxIndex(), 1000001);
  EXPECT_EQ(set.getIndex(1000001), 1U);
}

}  // namespace
}  // namespace varimesh
