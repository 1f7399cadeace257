// Typed field values. One `Value` object holds all values of one field, side by side in input
// order, so that a list of a million numbers costs its numbers and nothing else.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "reader/names.h"
#include "values/matrix.h"
#include "values/output.h"
#include "values/vec.h"

namespace varimesh {

class Value {
 public:
  virtual ~Value() = default;
  // How many values the field has. A field with exactly one is written without brackets.
  [[nodiscard]] virtual std::size_t size() const { return 1; }
  // Writes the value at position i, which is below size().
  virtual void print(Output& out, std::size_t i) const = 0;
  // Called before every value but the first; decides whether a line break goes before it.
  virtual void printLn(Output& out, int indent) const;
};

// A value that a field has exactly one of.
template <class T>
struct SingleValue : Value {
  T value;
  explicit SingleValue(T v) : value(std::move(v)) {}
};

// Values of which a field may have any number.
template <class T>
struct ValueList : Value {
  std::vector<T> values;
  ValueList() = default;
  explicit ValueList(std::vector<T> list) : values(std::move(list)) {}
  [[nodiscard]] std::size_t size() const final { return values.size(); }
};

struct FBool final : SingleValue<int> {
  using SingleValue::SingleValue;
  void print(Output& out, std::size_t i) const override;
};

// An enumeration word by its number; a number without a word in its kind is written as a number.
struct FEnum final : SingleValue<int> {
  EnumKind kind;
  explicit FEnum(int v, EnumKind k) : SingleValue(v), kind(k) {}
  void print(Output& out, std::size_t i) const override;
};

// A set of bits, written with their words; a mask with other bits is written as a number.
struct FBitMask final : SingleValue<int> {
  EnumKind kind;
  explicit FBitMask(int v, EnumKind k) : SingleValue(v), kind(k) {}
  void print(Output& out, std::size_t i) const override;
};

// Width, height, number of components, then the pixels; written on one line without brackets.
struct FImage final : SingleValue<std::vector<int>> {
  using SingleValue::SingleValue;
  void print(Output& out, std::size_t i) const override;
};

struct FMatrix final : SingleValue<Matrix> {
  using SingleValue::SingleValue;
  void print(Output& out, std::size_t i) const override;
};

struct Rotation {
  Vec axis;
  float angle = 0;  // radians
};

struct FRotation final : SingleValue<Rotation> {
  using SingleValue::SingleValue;
  void print(Output& out, std::size_t i) const override;
};

struct FFloat final : ValueList<float> {
  using ValueList::ValueList;
  void print(Output& out, std::size_t i) const override;
  void printLn(Output& out, int indent) const override;
};

struct FLong final : ValueList<int> {
  using ValueList::ValueList;
  void print(Output& out, std::size_t i) const override;
  void printLn(Output& out, int indent) const override;
};

// Texts between double quotes, as written: escapes are not interpreted.
struct FString final : ValueList<std::string> {
  using ValueList::ValueList;
  void print(Output& out, std::size_t i) const override;
};

struct Vec2 {
  float x = 0;
  float y = 0;
  friend bool operator==(const Vec2&, const Vec2&) = default;
};

struct FVec2f final : ValueList<Vec2> {
  using ValueList::ValueList;
  void print(Output& out, std::size_t i) const override;
};

struct FVec3f final : ValueList<Vec> {
  using ValueList::ValueList;
  void print(Output& out, std::size_t i) const override;
};

// Numbers separated by single blanks.
void printVec(Output& out, const Vec& v);
void printVec(Output& out, const Vec2& v);

}  // namespace varimesh
