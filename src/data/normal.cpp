#include "data/normal.h"

#include "reader/names.h"
#include "values/list.h"
#include "values/value.h"

namespace varimesh {

int Normal::compareWith(const Normal& other) const {
  if (const int order = compareNumbers(x, other.x); order != 0) return order;
  if (const int order = compareNumbers(y, other.y); order != 0) return order;
  return compareNumbers(z, other.z);
}

void Normal::print(Output& out, int) const {
  printVec(out, Vec(x, y, z));
  global_cpl += 3;
}

int TextureCoord::compareWith(const TextureCoord& other) const {
  if (const int order = compareNumbers(s, other.s); order != 0) return order;
  return compareNumbers(t, other.t);
}

void TextureCoord::print(Output& out, int) const {
  printFloat(out, s);
  out.put(' ');
  printFloat(out, t);
  global_cpl += 2;
}

void NormalSet::print(Output& out, int indent) {
  setIndices();
  if (isEmpty()) return;
  printList(out, indent, fieldIdString[FIELD_vector],
            [&](int column) { printSet(out, column, 0); });
}

void TextureCoordSet::print(Output& out, int indent) {
  setIndices();
  if (isEmpty()) return;
  printList(out, indent, fieldIdString[FIELD_point], [&](int column) { printSet(out, column, 0); });
}

}  // namespace varimesh
