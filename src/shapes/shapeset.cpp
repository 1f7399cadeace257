#include "shapes/shapeset.h"

#include "reader/names.h"
#include "values/list.h"

namespace varimesh {

void ShapeSet::finish() {
  const auto coords = coordSet.getOctreeCoords();
  writtenIndices_.reserve(coords.size());
  for (const OctreeCoord& coord : coords) writtenIndices_.push_back(coord.index);

  if (setCount == 0) return;
  const OctreeCoord& first = coords[getCoords(0).front()];
  box_.setTo(first.x, first.y, first.z, first.x, first.y, first.z);
  for (ShapeId shape = 0; shape < static_cast<ShapeId>(setCount); ++shape) {
    for (const CoordId corner : getCoords(shape)) {
      box_.enlargeIfOutside(coords[corner].x, coords[corner].y, coords[corner].z);
    }
  }
}

void ShapeSet::printIndexFields(Output& out, int indent, int endCount,
                                bool (*isTaken)(std::span<const CoordId> coords)) const {
  const auto forEachTaken = [&](int column, auto printShape) {
    global_cpl = 0;
    bool isFirst = true;
    for (ShapeId shape = 0; shape < static_cast<ShapeId>(setCount); ++shape) {
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
    for (unsigned i = 0; i < size; ++i) {
      out.writeInt(getNumber(i));
      out.put(',');
    }
    out.write("-1");
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
  printAttribute(FIELD_materialIndex, materials);
  printAttribute(FIELD_normalIndex, normals);
  printAttribute(FIELD_textureCoordIndex, textureCoords);
}

}  // namespace varimesh
