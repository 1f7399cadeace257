#include "data/material.h"

#include <algorithm>

#include "data/normal.h"
#include "reader/names.h"
#include "values/list.h"
#include "values/value.h"

namespace varimesh {
namespace {

const RGB* getColor(const Material& material, int field) {
  switch (field) {
    case FIELD_ambientColor: return &material.ambientColor;
    case FIELD_diffuseColor: return &material.diffuseColor;
    case FIELD_specularColor: return &material.specularColor;
    case FIELD_emissiveColor: return &material.emissiveColor;
    default: return nullptr;
  }
}

float getNumber(const Material& material, int field) {
  return field == FIELD_shininess ? material.shininess : material.transparency;
}

std::uint64_t mixHash(std::uint64_t hash, const RGB& color) {
  return varimesh::mixHash(varimesh::mixHash(varimesh::mixHash(hash, color.r), color.g), color.b);
}

}  // namespace

int RGB::compareWith(const RGB& other) const {
  if (const int order = compareNumbers(r, other.r); order != 0) return order;
  if (const int order = compareNumbers(g, other.g); order != 0) return order;
  return compareNumbers(b, other.b);
}

int Material::compareField(const Material& other, int field) const {
  if (const RGB* color = getColor(*this, field)) return color->compareWith(*getColor(other, field));
  return compareNumbers(getNumber(*this, field), getNumber(other, field));
}

int Material::compareWith(const Material& other) const {
  for (const int field : materialFields) {
    if (const int order = compareField(other, field); order != 0) return order;
  }
  return 0;
}

std::uint64_t Material::hash() const {
  std::uint64_t hash = mixHash(mixHash(0, ambientColor), diffuseColor);
  hash = mixHash(mixHash(hash, specularColor), emissiveColor);
  return varimesh::mixHash(varimesh::mixHash(hash, shininess), transparency);
}

void Material::print(Output& out, int field) const {
  if (const RGB* color = getColor(*this, field)) {
    printVec(out, Vec(color->r, color->g, color->b));
    global_cpl += 3;
  } else {
    printFloat(out, getNumber(*this, field));
    ++global_cpl;
  }
}

void MaterialSet::print(Output& out, int indent) {
  setIndices();
  if (isEmpty()) return;
  for (std::size_t i = 0; i < materialFields.size(); ++i) {
    if ((mask >> i & 1U) == 0) continue;
    const int field = materialFields[i];
    printList(out, indent, fieldIdString[static_cast<std::size_t>(field)],
              [&](int column) { printSet(out, column, field); });
  }
}

void MaterialSet::printSet(Output& out, int indent, int field) {
  uncompressed = std::min(uncompressed, array.getSize());
  printUpTo(findEnd(field), out, indent, field);
}

// The position where a field's list may end because the last value written goes on for all
// materials behind it.
int MaterialSet::findEnd(int field) const {
  const int size = array.getSize();
  const auto differs = [&](Reference a, Reference b) {
    return records[a].compareField(records[b], field) != 0;
  };
  int end = size;
  while (end >= 2 && end > uncompressed && !differs(array[end - 1], array[end - 2])) --end;
  if (end == size) return size;

  // The entry kept last may itself be skipped as a duplicate. Then the last value written is
  // another one, and the list must go on up to the next material that is written, if the values
  // cut off would change.
  Reference lastWritten = 0;
  Reference distinct = 0;
  forEachWritten(end, [&](int, Reference reference) { lastWritten = reference; });
  for (int i = 0; i < end; ++i) {
    if (array[i] == distinct) ++distinct;
  }
  if (!differs(lastWritten, array[end - 1])) return end;
  while (end < size && array[end] != distinct) ++end;
  return end < size ? end + 1 : size;
}

}  // namespace varimesh
