#include "scene/node.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace varimesh {

IdentSet Node::identifiers;
int Node::nolods = 0;
int Node::extractlod = -1;
int Node::removedcount = 0;
int Node::joinmode = 0;
int Node::verbosejoin = 0;

Node::Node(NodeInit&& init)
    : type(init.type),
      firstLine(init.firstLine),
      lastLine(init.lastLine),
      fieldsText(std::move(init.fieldsText)),
      fields(std::move(init.fields)) {}

Node::~Node() {
  ++removedcount;
  if (verbosejoin == 0) return;
  message("join", "deleting node %s ", typeName().data());
  if (!name.empty()) std::printf("with DEF >%s<", name.c_str());
  std::printf("\n");
}

void Node::print(Output& out, int indent) {
  int inner = indent;
  printHead(out, inner);
  printFields(out, inner);
  printTail(out, indent);
}

void Node::setupDepends(State&) {}

void Node::setupCamera(Node*&) {}

void Node::markAsUsed() { used = 1; }

void Node::printTree(Output& out, int indent) {
  char lines[64];
  const int length = std::snprintf(lines, sizeof lines, "\n%4d-%4d ", firstLine, lastLine);
  out.write({lines, static_cast<std::size_t>(length)});
  printIndent(out, indent);
  out.write(type != 0 ? typeName() : "other ...\n");
  if (!name.empty()) {
    out.write(" DEF ");
    out.write(name);
  }
}

void Node::printHead(Output& out, int& indent) const {
  printIndent(out, indent);
  if (!name.empty()) {
    out.write("DEF ");
    out.write(name);
    out.put(' ');
  }
  out.write(typeName());
  out.write(" {\n");
  indent = addColumns(indent, global_indent);
  if (fieldsText.empty()) return;
  printIndent(out, indent);
  out.write("fields ");
  out.write(fieldsText);
  out.put('\n');
}

void Node::printFields(Output& out, int indent) const {
  for (const Field& field : fields) field.print(out, indent);
}

void Node::printTail(Output& out, int indent) const {
  printIndent(out, indent);
  out.write("}\n");
}

Field* Node::getField(int number) {
  const auto field = std::find_if(fields.rbegin(), fields.rend(),
                                  [&](const Field& f) { return f.number == number; });
  return field != fields.rend() ? &*field : nullptr;
}

void Node::registerName() {
  if (!name.empty()) identifiers.insert(this);
}

void Node::printPlace(std::FILE* file) const {
  if (firstLine != 0 || lastLine != 0) {
    std::array<char, 2 * intRoom + 2> lines;
    char* end = formatInt(lines.data(), firstLine);
    *end++ = '-';
    end = formatInt(end, lastLine);
    *end++ = ' ';
    std::fwrite(lines.data(), 1, static_cast<std::size_t>(end - lines.data()), file);
  }
  std::fwrite(typeName().data(), 1, typeName().size(), file);
  std::fputs(": ", file);
}

void Node::message(const char* prefix, const char* format, ...) const {
  if (prefix != nullptr && *prefix != '\0') std::printf("%s: ", prefix);
  printPlace(stdout);
  std::va_list arguments;
  va_start(arguments, format);
  std::vprintf(format, arguments);
  va_end(arguments);
}

void Node::warning(const char* format, ...) const {
  std::fflush(stdout);  // so that both streams keep their order in one log
  std::fputs("warning: ", stderr);
  printPlace(stderr);
  std::va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
}

void Node::error(const char* format, ...) const {
  std::fflush(stdout);
  std::fputs("error: ", stderr);
  printPlace(stderr);
  std::va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
  std::exit(EXIT_FAILURE);
}

}  // namespace varimesh
