// The rules of the level generator in their plainest form: a tree of pointers, one collapse per
// descent, full walks for every count. Slow and easy to check; the real code must give the same
// levels.
#pragma once

#include <array>
#include <vector>

namespace varimesh::plain {

using Point = std::array<float, 3>;

// A corner of a shape: a position in the list of points (in a result: the written index of the
// point that stands there) and the numbers of its attributes, -1 where it has none.
struct Corner {
  int point = -1;
  int material = -1;
  int normal = -1;
  int texture = -1;
};
using Outline = std::vector<Corner>;

struct Rules {
  std::array<float, 3> weights{8, 1, 0};  // area, volume, weighted mean
  float minDiff = 0.2F;
  float splitCosinus = 0.98480773F;
  bool nolines = false;
  bool noquads = false;
  float errorRange = 2;
  float cameraHeightAngle = 0.785398F;
};

// One IndexedFaceSet (type 1, outlines of 2 to 4 corners) or IndexedLineSet (type 2, of 2 corners).
struct Input {
  int shapeType = 1;
  int vertexOrdering = 0;
  std::vector<Outline> outlines;
};

struct Level {
  std::vector<Outline> shapes;
  int used = 0;  // points that they use
  float range = 0;
  Point center{};
  float sphere = 0;
};
using Levels = std::vector<Level>;

struct Result {
  int count = 0;               // distinct points
  std::vector<Levels> shapes;  // for each input, in order
};

// The levels of shapes that use one set of points after one another.
Result generate(const std::vector<Point>& points, const std::vector<Input>& inputs,
                const Rules& rules);

}  // namespace varimesh::plain
