#include "shapes/lineset.h"

#include <algorithm>

namespace varimesh {

void LineSet::insert(const Line& line) {
  if (!insertOk(line)) return;
  const auto shape = static_cast<ShapeId>(setCount);
  const std::array<Vertex, 2> ends = {line.vertex1, line.vertex2};
  lines_.push_back({ends[0].coord, ends[1].coord});
  materials.append(ends, &Vertex::material);
  normals.append(ends, &Vertex::normal);
  textureCoords.append(ends, &Vertex::textureCoord);
  for (const CoordId coord : lines_.back()) coordSet.addShapeRef(coord, shape);
  ++setCount;
}

// The same segment would stand in the list of both ends, so the shorter list decides.
bool LineSet::insertOk(const Line& line) {
  constexpr std::uint32_t longList = 64;
  const CoordId a = line.vertex1.coord;
  const CoordId b = line.vertex2.coord;
  if (a == noCoord || b == noCoord || a == b) return false;
  const OctreeCoord& first = coordSet.getOctreeCoord(a);
  const OctreeCoord& second = coordSet.getOctreeCoord(b);
  if (std::min(first.shapeCount, second.shapeCount) > longList) return !isKnown({a, b});
  for (std::uint32_t i = first.shapeCount <= second.shapeCount ? first.shapeRefs : second.shapeRefs;
       i != noShapeRef;) {
    const ShapeRef& ref = coordSet.getShapeRef(i);
    const Ends& other = lines_[ref.shape];
    if (other == Ends{a, b} || other == Ends{b, a}) return false;
    i = ref.next;
  }
  return true;
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
  coordSet.deleteShapeRefs();
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
  return {coordSet.getRepresent(coord), materials.get(shape, end), normals.get(shape, end),
          textureCoords.get(shape, end)};
}

void LineSet::print(Output& out, int indent) const {
  constexpr int endCount = 0;  // unlike faces, the -1 does not count on a line of the output
  printIndexFields(out, indent, endCount, [](std::span<const CoordId>) { return true; });
}

}  // namespace varimesh
