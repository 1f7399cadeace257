#include "lod/coordset.h"

#include "reader/names.h"
#include "values/list.h"

namespace varimesh {

float CoordSet::errorRange = 2.0F;
float CoordSet::cameraHeightAngle = 0.785398F;
float CoordSet::minDiff = 0.2F;

void CoordSet::setBounds(const Bounds& box) {
  bounds = box;
  bounds.makeCubic();
}

void CoordSet::print(Output& out, int indent) {
  setIndices();
  printList(out, indent, fieldIdString[FIELD_point], [&](int column) { printSet(out, column, 0); });
}

}  // namespace varimesh
