#include "shapes/linenode.h"

#include <cstdio>

#include "shapes/lineset.h"
#include "shapes/vertexreader.h"

namespace varimesh {
namespace {

using Source = IndexReader::Source;

constexpr VertexReader::Sources lineSources = {
    Source::none,          Source::none,          Source::segmentNumber, Source::listBySegment,
    Source::polygonNumber, Source::listByPolygon, Source::vertexNumber,  Source::listByVertex};

}  // namespace

int LineNode::verbose = 0;

ShapeNode::Kind LineNode::getKind() const { return {"line", "lod - ", 2, verbose != 0}; }

std::unique_ptr<ShapeSet> LineNode::generateLineSet() {
  const std::span<const int> positions = beginShapeSet();
  OctreeCoordSet& coordSet = getCoordSet();
  VertexReader reader(*this, lineSources);
  auto set = std::make_unique<LineSet>(0, coordSet, reader.getAttributes());
  int segments = 0;
  reader.forEachPolygon(positions, "polyline", [&](std::span<const Vertex> vertices) {
    for (std::size_t i = 0; i + 1 < vertices.size(); ++i) {
      set->insert({vertices[i], vertices[i + 1]});
      ++segments;
    }
  });
  set->finish();
  if (verbose != 0) {
    message("line", "list=%d ", segments);
    printLevelStatistics(*set);
  }
  deleteFields();
  return set;
}

void LineNode::printLevelStatistics(const ShapeSet& set) const {
  std::printf("set=%d\n", set.setCount);
}

void LineNode::printLevel(Output& out, int indent, const ShapeSet& set) {
  int inner = indent;
  printHead(out, inner);
  static_cast<const LineSet&>(set).print(out, inner);
  printTail(out, indent);
}

}  // namespace varimesh
