// A field of a node: its number in the field table and its values.
#pragma once

#include <memory>
#include <utility>

#include "reader/names.h"
#include "values/value.h"

namespace varimesh {

class Field {
 public:
  int number;                    // a FieldId
  std::unique_ptr<Value> value;  // null or of size 0: an empty list

  Field(int n, std::unique_ptr<Value> v) : number(n), value(std::move(v)) {}

  [[nodiscard]] std::size_t size() const { return value ? value->size() : 0; }

  // Writes the whole field, its line end included.
  void print(Output& out, int indent) const;
};

}  // namespace varimesh
