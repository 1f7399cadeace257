#include "values/field.h"

namespace varimesh {

void Field::print(Output& out, int indent) const {
  const std::string_view name = fieldIdString[static_cast<std::size_t>(number)];
  const std::size_t count = size();
  int continuation = addColumns(indent, static_cast<int>(name.size()));
  printIndent(out, indent);
  out.write(name);
  out.put(' ');
  if (count != 1) {
    out.write("[ ");
    continuation = addColumns(continuation, 2);
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) {
      out.put(',');
      value->printLn(out, continuation);
    }
    value->print(out, i);
  }
  if (count != 1) out.write(" ]");
  out.put('\n');
}

}  // namespace varimesh
