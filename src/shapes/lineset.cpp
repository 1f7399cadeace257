#include "shapes/lineset.h"

#include <algorithm>

namespace varimesh {

void LineSet::insert(const Line& line) {
  if (!insertOk(line)) return;
  const std::array<Vertex, 2> ends = {line.vertex1, line.vertex2};
  lines_.push_back({ends[0].coord, ends[1].coord});
  numbers.append(ends);
  for (const CoordId coord : lines_.back()) coordSet.use(coord);
  linkNewest(std::min(ends[0].coord, ends[1].coord));
  ++setCount;
}

bool LineSet::insertOk(const Line& line) {
  const CoordId a = line.vertex1.coord;
  const CoordId b = line.vertex2.coord;
  if (a == noCoord || b == noCoord || a == b) return false;
  bool isNew = true;
  std::size_t length = 0;
  forEachInList(std::min(a, b), [&](ShapeId shape) {
    isNew = lines_[shape] != Ends{a, b} && lines_[shape] != Ends{b, a};
    return isNew && ++length <= longList;
  });
  return length > longList ? !isKnown({a, b}) : isNew;
}

bool LineSet::isKnown(const Ends& ends) {
  const auto getKey = [](const Ends& e) {
    return std::uint64_t{std::min(e[0], e[1])} << 32U | std::max(e[0], e[1]);
  };
  for (; knownCount_ < lines_.size(); ++knownCount_) known_.insert(getKey(lines_[knownCount_]));
  return known_.contains(getKey(ends));
}

std::unique_ptr<ShapeSet> LineSet::generateNextLOD() {
  auto next = std::make_unique<LineSet>(lod + 1, coordSet, attributes);
  handOver(*next);
  for (ShapeId shape = 0; shape < lines_.size(); ++shape) {
    next->insert({getRepresentOfVertex(shape, 0), getRepresentOfVertex(shape, 1)});
  }
  next->finish();
  return next;
}

// An end of a segment on its representative; empty when the other end carries the cluster's data.
Vertex LineSet::getRepresentOfVertex(ShapeId shape, unsigned end) const {
  const CoordId coord = lines_[shape][end];
  const CoordId selected = coordSet.getSelected(coord);
  if (selected != coord && selected == lines_[shape][1 - end]) return {};
  return numbers.getVertex(coordSet.getRepresent(coord), shape, end);
}

void LineSet::print(Output& out, int indent) const {
  constexpr int endCount = 0;  // unlike faces, the -1 does not count on a line of the output
  printIndexFields(out, indent, endCount, [](std::span<const CoordId>) { return true; });
}

}  // namespace varimesh
