// The triangulator on any outline: flat or not, with repeated corners, crossing itself.
#include <limits>
#include <vector>

#include "end_of_run.h"
#include "triangulate/triangulator.h"

namespace varimesh {
namespace {

// What the order of the edges tells must be what all pairs of them tell.
void compareWithPairs(const std::vector<Point2>& corners) {
  const Outline outline(corners);
  const int n = outline.size();
  std::vector<EdgeBox> boxes;
  bool crosses = false;
  for (int i = 0; i < n; ++i) {
    constexpr double kFar = std::numeric_limits<double>::infinity();
    boxes.push_back({{-kFar, -kFar}, {kFar, kFar}, i});
    for (int j = i + 1; j < n; ++j) {
      if (outline[i] == outline[j]) return;
      crosses = crosses || outline.edgesCross(i, j);
    }
  }
  const EdgeOrder::Verdict verdict = EdgeOrder(outline, boxes).examine();
  if (verdict == (crosses ? EdgeOrder::Verdict::clear : EdgeOrder::Verdict::crossing)) {
    report("the order of the edges misleads");
  }
}

void triangulate(std::string_view input) {
  setDefaults();
  Bytes bytes(input);
  const int kind = bytes.below(4);
  Triangulator::fixedSeed = static_cast<unsigned>(bytes.below(256));
  Triangulator triangulator;
  // Two outlines, one after the other, since the tables are used again.
  for (int round = 0; round < 2 && !bytes.isEmpty(); ++round) {
    triangulator.reset();
    std::vector<Point2> corners;
    const int limit = 3 + bytes.below(253);
    int n = 0;
    for (; n < limit && !bytes.isEmpty(); ++n) {
      if (kind == 0) {  // any finite numbers
        const auto number = [&] {
          const auto value = bytes.take<float>();
          return double{value - value == 0 ? value : 0.0F};
        };
        const double x = number();
        const double y = number();
        corners.push_back({x, y});
        triangulator.addPoint(x, y, number());
      } else {  // on a grid, in a plane of some slope
        const double x = bytes.below(32);
        const double y = bytes.below(32);
        corners.push_back({x, y});
        triangulator.addPoint(x, y, kind == 1 ? 0 : kind == 2 ? x - 2 * y : bytes.below(8));
      }
    }
    compareWithPairs(corners);
    if (triangulator.run() == 0) continue;
    if (n > 2 && triangulator.getCount() != n - 2) report("wrong number of triangles");
    for (int i = 0; i < triangulator.getCount(); ++i) {
      for (int k = 0; k < 3; ++k) {
        const int corner = triangulator.getPoint(i, k);
        if (corner < 0 || corner >= n) report("a corner that is not there");
      }
    }
  }
}

}  // namespace
}  // namespace varimesh

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  varimesh::attempt(varimesh::triangulate, {reinterpret_cast<const char*>(data), size});
  return 0;
}
