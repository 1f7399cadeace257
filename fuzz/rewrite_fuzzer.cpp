// What is written without levels is read again and written to the same text.
#include "end_of_run.h"
#include "reader/parser.h"
#include "scene/node.h"

namespace varimesh {
namespace {

// A text without its first header node, which each writing puts in front.
std::string removeHeader(std::string text) {
  const std::size_t begin = text.find("    Info {\n");
  const std::size_t end = text.find("\n    }\n", begin);
  if (begin == std::string::npos || end == std::string::npos) report("no header was written");
  return text.erase(begin, end + 7 - begin);
}

// With every run of blanks as one: the body of an unknown node gets one more each time.
std::string squeeze(const std::string& text) {
  std::string squeezed;
  for (const char c : text) {
    if (c != ' ' || squeezed.empty() || squeezed.back() != ' ') squeezed += c;
  }
  return squeezed;
}

void rewrite(std::string_view input) {
  setDefaults();
  Node::nolods = 1;
  yacc_nolods = 1;
  // The first writing rounds coordinates, and so may make points equal; the second merges them.
  const std::string second = writeScene(writeScene(input, false), false);
  const std::string third = removeHeader(writeScene(second, false));
  if (squeeze(second) != squeeze(third)) report("a rewritten scene differs");
}

}  // namespace
}  // namespace varimesh

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  varimesh::attempt(varimesh::rewrite, {reinterpret_cast<const char*>(data), size});
  return 0;
}
