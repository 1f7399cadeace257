// What becomes of single faces and segments when they are put into a set.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "geometry_run.h"

namespace varimesh {
namespace {

using plain::Outline;
using plain::Point;
using plain::Rules;
using Polygons = std::vector<std::vector<int>>;

//   3---2---5
//   |   |   |      1, 2 and 5 lie on a plane of their own when `bend` is not 0
//   0---1---4
std::vector<Point> makePoints(float bend = 0) {
  return {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {2, 0, bend}, {2, 1, bend}, {1, 0, 0}};
}

// The level-0 set of the polygons as it is written: faces, then segments.
std::string insert(const std::vector<Point>& points, const Polygons& polygons,
                   const Rules& rules = {}, int vertexOrdering = 0) {
  const RulesInForce inForce(rules);
  const auto set = makeCoordSet(points);
  plain::Input input;
  input.vertexOrdering = vertexOrdering;
  for (const auto& polygon : polygons) {
    Outline outline;
    for (const int point : polygon) outline.push_back({point});
    input.outlines.push_back(outline);
  }
  const LevelRun run = runLevels(*set, input);
  const auto& faces = dynamic_cast<const FaceSet&>(*run.levels[0]);
  const auto list = [&](FaceSet::Mode mode) {
    const std::string text = catchOutput([&](Output& out) { faces.print(out, 0, mode); });
    const std::size_t begin = text.find("[ ") + 2;
    return text.substr(begin, text.find(" ]") - begin);
  };
  return list(FaceSet::polygons) + " | " + list(FaceSet::segments);
}

// The same polygons must give the same set where so many faces meet in every corner that a set
// looks for them in another way.
std::string insert(const Polygons& polygons, int vertexOrdering = 0) {
  const std::string set = insert(makePoints(), polygons, {}, vertexOrdering);
  std::vector<Point> points = makePoints();
  Polygons crowd;
  for (int i = 0; i < 70 * 6; ++i) {
    const auto n = static_cast<int>(points.size());
    points.push_back({static_cast<float>(i), 5, 5});
    points.push_back({static_cast<float>(i), 6, 7});
    crowd.push_back({i % 6, n, n + 1});
  }
  std::string expected = insert(points, crowd, {}, vertexOrdering);
  expected.resize(expected.size() - 3);  // " | "
  expected += (set.starts_with(" ") ? "" : ",") + set;
  crowd.insert(crowd.end(), polygons.begin(), polygons.end());
  EXPECT_EQ(insert(points, crowd, {}, vertexOrdering), expected);
  return set;
}

TEST(Faces, LoseRepeatedCorners) {
  EXPECT_EQ(insert({{0, 1, 1, 2}}), "0,1,2,-1 | ");
  EXPECT_EQ(insert({{0, 1, 2, 0}}), "0,1,2,-1 | ");
  EXPECT_EQ(insert({{0, 1, 6, 2}}), "0,1,2,-1 | ");  // 6 is the same point as 1
  EXPECT_EQ(insert({{0, 0, 1, 1}}), " | 0,1,-1");
  EXPECT_EQ(insert({{0, 0, 0}, {1, 6}, {2, 2, 2, 2}}), " | ");
}

TEST(Faces, FoldIntoSegments) {
  EXPECT_EQ(insert({{0, 1, 0, 1}}), " | 0,1,-1");
  EXPECT_EQ(insert({{0, 1, 0, 2}}), " | 0,1,-1,0,2,-1");
  EXPECT_EQ(insert({{1, 0, 2, 0}}), " | 1,0,-1,2,0,-1");
  Rules rules;
  rules.nolines = true;
  EXPECT_EQ(insert(makePoints(), {{0, 1, 0, 2}, {0, 1, 2}}, rules), "0,1,2,-1 | ");
}

TEST(Faces, AreNotInsertedTwice) {
  const std::vector<int> square = {0, 1, 2, 3};
  const std::string once = "0,1,2,3,-1 | ";
  // The same square from another corner, its edges and diagonals, and triangles cut off it.
  EXPECT_EQ(insert({square, {2, 3, 0, 1}, {1, 0}, {3, 0}, {0, 2}, {3, 1}, {1, 2, 3}}), once);
  EXPECT_EQ(insert({square, {3, 2, 1, 0}, {2, 1, 0}, {1, 0, 3}}), once);
  // A triangle is looked for in a square only in the order in which its corners are named.
  EXPECT_EQ(insert({square, {2, 0, 1}}), "0,1,2,3,-1,2,0,1,-1 | ");
  // With a known ordering the back of a face is another face.
  EXPECT_EQ(insert({square, {3, 2, 1, 0}, {2, 1, 0}}, 1), "0,1,2,3,-1,3,2,1,0,-1 | ");
  EXPECT_EQ(insert({{0, 1, 2}, {2, 1, 0}}, 2), "0,1,2,-1,2,1,0,-1 | ");
  EXPECT_EQ(insert({{0, 1}, {1, 0}}, 1), " | 0,1,-1");
  // Other faces at the same corners stay, and so does what came before the face around it.
  EXPECT_EQ(insert({square, {0, 1, 4}, {1, 4}, {2, 4}}), "0,1,2,3,-1,0,1,4,-1 | 2,4,-1");
  EXPECT_EQ(insert({{0, 1}, {0, 1, 2}, square}), "0,1,2,-1,0,1,2,3,-1 | 0,1,-1");
}

TEST(Faces, SplitQuadranglesThatAreNotFlat) {
  Rules noquads;
  noquads.noquads = true;
  EXPECT_EQ(insert({{0, 1, 2, 3}}), "0,1,2,3,-1 | ");
  // As flat one way as the other: cut from corner 1 to corner 3.
  EXPECT_EQ(insert(makePoints(), {{0, 1, 2, 3}}, noquads), "1,2,3,-1,0,1,3,-1 | ");

  // Bent along 1-2, so that opposite corners are turned against each other, by little or by much.
  //   0---1---4      seen from the edge
  EXPECT_EQ(insert(makePoints(0.1F), {{0, 1, 5, 3}}), "0,1,5,3,-1 | ");
  EXPECT_EQ(insert(makePoints(1), {{0, 1, 5, 3}}), "1,5,3,-1,0,1,3,-1 | ");
  EXPECT_EQ(insert(makePoints(1), {{1, 5, 3, 0}}), "1,5,3,-1,1,3,0,-1 | ");

  // An arrowhead, with the notch at corner 2: the cut must go through it.
  //   0 . _
  //    \  2 - - 1    (3 and 0 are the barbs)
  //   3 `
  const std::vector<Point> arrow = {{0, 2, 0}, {4, 1, 0}, {0, 0, 0}, {1, 1, 0}};
  EXPECT_EQ(insert(arrow, {{0, 3, 2, 1}}), "3,2,1,-1,0,3,1,-1 | ");
  EXPECT_EQ(insert(arrow, {{3, 2, 1, 0}}), "3,2,1,-1,3,1,0,-1 | ");

  // No cut of corners in a row has an area, yet both parts count as triangles.
  const std::vector<Point> row = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}};
  EXPECT_EQ(insert(row, {{0, 1, 2, 3}}), "1,2,3,-1,0,1,3,-1 | ");
}

// Four corners of a square and one point close to corner 1, which a second face uses. The cluster
// of 1 and 4 takes the place of one of them; the faces bring the attributes.
TEST(Faces, TakeTheAttributesOfTheSelectedPoint) {
  Rules rules;
  rules.weights = {0, 0, 1};
  const RulesInForce inForce(rules);
  const auto set = makeCoordSet({{0, 0, 0}, {7, 0, 0}, {8, 8, 0}, {0, 8, 0}, {8, 0, 0}});
  plain::Input input;
  input.outlines = {{{0, 10}, {1, 11}, {4, 14}, {2, 12}}, {{3, 23}, {0, 20}, {4, 24}}};
  ShapeAttributes attributes;
  attributes.hasMaterials = true;
  attributes.materialBinding = PER_VERTEX_INDEXED;
  const LevelRun run = runLevels(*set, input, attributes);
  ASSERT_GT(run.levels.size(), 1U);
  // Both are as far from their mean; 1 stands in the earlier octant. The first face has it as a
  // corner and takes its material; the other one keeps its own.
  EXPECT_EQ(catchOutput([&](Output& out) {
              dynamic_cast<const FaceSet&>(*run.levels[1]).print(out, 0, FaceSet::polygons);
            }),
            "coordIndex [ 0,1,2,-1,3,0,1,-1 ]\nmaterialIndex [ 10,11,12,-1,23,20,24,-1 ]\n");
}

TEST(ShapeSets, MeasureTheirBox) {
  const auto set = makeCoordSet({{0, 0, 0}, {1, 0, 0}, {1, 1, 1}, {9, 9, 9}});
  plain::Input input;
  input.outlines = {{{0}, {1}, {2}}};
  const LevelRun run = runLevels(*set, input);
  EXPECT_FLOAT_EQ(run.levels[0]->getSphere(), 1.7320508F);
  EXPECT_EQ(run.levels[0]->getCenter(), Vec(0.5F, 0.5F, 0.5F));
  const LevelRun empty = runLevels(*set, {});
  EXPECT_EQ(empty.levels.size(), 1U);
  EXPECT_EQ(empty.levels[0]->getSphere(), 0);
  EXPECT_EQ(empty.levels[0]->getCenter(), Vec());
}

}  // namespace
}  // namespace varimesh
