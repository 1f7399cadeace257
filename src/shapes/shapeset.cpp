#include "shapes/shapeset.h"

#include "reader/names.h"
#include "values/list.h"

namespace varimesh {

void ShapeSet::finish() {
  const auto coords = coordSet.getOctreeCoords();
  writtenIndices_.resize(coords.size());
  if (setCount == 0) return;
  const OctreeCoord& first = coords[getCoords(order.empty() ? 0 : order.front()).front()];
  box_.setTo(first.x, first.y, first.z, first.x, first.y, first.z);
  for (std::size_t i = 0; i < coords.size(); ++i) {
    const OctreeCoord& coord = coords[i];
    writtenIndices_[i] = coord.index;
    if (coord.isUsed) box_.enlargeIfOutside(coord.x, coord.y, coord.z);
  }
}

void ShapeSet::printIndexFields(Output& out, int indent, int endCount,
                                bool (*isTaken)(std::span<const CoordId> coords)) const {
  const auto forEachTaken = [&](int column, auto printShape) {
    global_cpl = 0;
    bool isFirst = true;
    for (ShapeId i = 0; i < static_cast<ShapeId>(setCount); ++i) {
      const ShapeId shape = order.empty() ? i : order[i];
      const auto coords = getCoords(shape);
      if (!isTaken(coords)) continue;
      if (!isFirst) {
        out.put(',');
        breakLine(out, global_longcpl, column);
      }
      isFirst = false;
      printShape(shape, coords);
    }
  };
  const auto printField = [&](FieldId field, auto printShape) {
    printList(out, indent, fieldIdString[static_cast<std::size_t>(field)],
              [&](int column) { forEachTaken(column, printShape); });
  };
  // A number for each corner, closed by -1.
  const auto printCorners = [&](std::size_t size, auto getNumber) {
    char* end = out.reserve((intRoom + 1) * size + 2);
    for (unsigned i = 0; i < size; ++i) {
      end = formatInt(end, getNumber(i));
      *end++ = ',';
    }
    *end++ = '-';
    *end++ = '1';
    out.advance(end);
    global_cpl += static_cast<int>(size) + endCount;
  };
  const auto printAttribute = [&](FieldId field, const AttributeList& list) {
    if (setCount == 0 || list.getPer() == AttributeList::Per::none) return;
    printField(field, [&](ShapeId shape, std::span<const CoordId> coords) {
      if (list.getPer() == AttributeList::Per::corner) {
        printCorners(coords.size(), [&](unsigned i) { return list.get(shape, i); });
      } else {
        out.writeInt(list.get(shape, 0));
        ++global_cpl;
      }
    });
  };

  printField(FIELD_coordIndex, [&](ShapeId, std::span<const CoordId> coords) {
    printCorners(coords.size(), [&](unsigned i) { return getWrittenIndex(coords[i]); });
  });
  printAttribute(FIELD_materialIndex, numbers.materials);
  printAttribute(FIELD_normalIndex, numbers.normals);
  printAttribute(FIELD_textureCoordIndex, numbers.textureCoords);
}

}  // namespace varimesh
