// Normals and texture coordinates as records of deduplicating sets.
#pragma once

#include "data/recordset.h"
#include "values/output.h"
#include "values/vec.h"

namespace varimesh {

// -1, 0 or 1; exact, without tolerance.
inline int compareNumbers(float a, float b) { return a < b ? -1 : a > b ? 1 : 0; }

// A normal as given: it is not normalised.
struct Normal : Data {
  float x = 0, y = 0, z = 0;

  Normal(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}
  [[nodiscard]] int compareWith(const Normal& other) const;
  [[nodiscard]] std::uint64_t hash() const { return mixHash(mixHash(mixHash(0, x), y), z); }
  void print(Output& out, int field) const;
};

struct TextureCoord : Data {
  float s = 0, t = 0;

  TextureCoord(float s_, float t_) : s(s_), t(t_) {}
  [[nodiscard]] int compareWith(const TextureCoord& other) const;
  [[nodiscard]] std::uint64_t hash() const { return mixHash(mixHash(0, s), t); }
  void print(Output& out, int field) const;
};

class NormalSet : public RecordSet<Normal> {
 public:
  // Numbers the records and writes the `vector` field; nothing for an empty set.
  void print(Output& out, int indent);
};

class TextureCoordSet : public RecordSet<TextureCoord> {
 public:
  // Numbers the records and writes the `point` field; nothing for an empty set.
  void print(Output& out, int indent);
};

}  // namespace varimesh
