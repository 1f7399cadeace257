#include "lod/coord.h"

#include "data/normal.h"
#include "values/value.h"

namespace varimesh {

int Coord::compareWith(const Coord& other) const {
  if (const int order = compareNumbers(x, other.x); order != 0) return order;
  if (const int order = compareNumbers(y, other.y); order != 0) return order;
  return compareNumbers(z, other.z);
}

void Coord::print(Output& out, int) const {
  printVec(out, getPosition());
  global_cpl += 3;
}

}  // namespace varimesh
