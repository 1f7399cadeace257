// The frame that all lists of data sets and shapes are written in.
#pragma once

#include <string_view>

#include "values/output.h"

namespace varimesh {

// Writes a field name, its opening bracket, what `body` writes (given the column of the first
// value, where further lines begin) and the closing bracket.
template <class Body>
void printList(Output& out, int indent, std::string_view name, Body body) {
  printIndent(out, indent);
  out.write(name);
  out.write(" [ ");
  body(addColumns(indent, static_cast<int>(name.size()) + 3));
  out.write(" ]\n");
}

}  // namespace varimesh
