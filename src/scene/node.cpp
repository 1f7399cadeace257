#include "scene/node.h"

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

Node::Node(NodeInit init)
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
  printHead(out, indent);
  printFields(out, indent);
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

void Node::printTail(Output& out, int& indent) const {
  indent = addColumns(indent, -global_indent);
  printIndent(out, indent);
  out.write("}\n");
}

Field* Node::getField(int number) {
  for (auto field = fields.rbegin(); field != fields.rend(); ++field) {
    if (field->number == number) return &*field;
  }
  return nullptr;
}

void Node::registerName() {
  if (!name.empty()) identifiers.insert(this);
}

void Node::printPlace(std::FILE* file) const {
  if (firstLine != 0 || lastLine != 0) std::fprintf(file, "%d-%d ", firstLine, lastLine);
  std::fprintf(file, "%s: ", typeName().data());
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
  std::fputs("warning: ", stderr);
  printPlace(stderr);
  std::va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
}

void Node::error(const char* format, ...) const {
  std::fputs("error: ", stderr);
  printPlace(stderr);
  std::va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
  std::exit(EXIT_FAILURE);
}

}  // namespace varimesh
