// Colours and materials.
#pragma once

#include <array>
#include <cstdint>

#include "data/recordset.h"
#include "reader/names.h"
#include "values/output.h"
#include "values/vec.h"

namespace varimesh {

// The fields of a material, in the order in which they are compared, masked and written. The first
// four are colours.
inline constexpr std::array<FieldId, 6> materialFields = {FIELD_ambientColor,  FIELD_diffuseColor,
                                                          FIELD_specularColor, FIELD_emissiveColor,
                                                          FIELD_shininess,     FIELD_transparency};
inline constexpr std::size_t materialColorCount = 4;

struct RGB {
  float r = 0, g = 0, b = 0;

  RGB() = default;
  RGB(float r_, float g_, float b_) : r(r_), g(g_), b(b_) {}
  // -1, 0 or 1: by red, then green, then blue, exactly.
  [[nodiscard]] int compareWith(const RGB& other) const;
  void setTo(const Vec& value) { *this = RGB(value.x, value.y, value.z); }
};

// One position of the up to six parallel lists of a Material node. Lists that the node does not
// have hold the same value, -1, in all its materials, so that they never make a difference.
struct Material : Data {
  RGB ambientColor{-1, -1, -1};
  RGB diffuseColor{-1, -1, -1};
  RGB specularColor{-1, -1, -1};
  RGB emissiveColor{-1, -1, -1};
  float shininess = -1;
  float transparency = -1;

  [[nodiscard]] int compareWith(const Material& other) const;
  [[nodiscard]] std::uint64_t hash() const;
  // Writes the value of one of the six fields.
  void print(Output& out, int field) const;
  // 0 when both materials have the same value in that field.
  [[nodiscard]] int compareField(const Material& other, int field) const;
};

class MaterialSet : public RecordSet<Material> {
 public:
  // Which fields the node has: bit 0 for ambientColor, and so on in the order of materialFields.
  unsigned mask = 0;

  // The number under which the material at an input position is written. Positions wrap around:
  // with three materials, position 4 is position 1. Not for an empty set or a negative position.
  [[nodiscard]] int getWrittenIndex(int position) const {
    return RecordSet::getWrittenIndex(position % array.getSize());
  }
  // Numbers the records and writes one list for each field that the node has.
  void print(Output& out, int indent);
  // Writes the values of one field, without the repeats at its end.
  void printSet(Output& out, int indent, int field);

 private:
  [[nodiscard]] int findEnd(int field) const;
};

}  // namespace varimesh
