#include "scene/leafnodes.h"

#include <memory>
#include <utility>

#include "scene/dependswalk.h"

namespace varimesh {

UseNode::UseNode(std::string reference, int first, int last)
    : Node({NODE_NONE, {}, {}, first, last}), identifier(std::move(reference)) {}

void UseNode::print(Output& out, int indent) {
  printIndent(out, indent);
  out.write("USE ");
  out.write(identifier);
  out.put('\n');
}

void UseNode::setupDepends(State& state) { DependsWalk(state).run(*this); }

Node& UseNode::resolve() const {
  Node* node = identifiers.search(identifier);
  if (node == nullptr) error("USE identifier >%s< not defined\n", identifier.c_str());
  return *node;
}

UnknownNode::UnknownNode(std::string word, std::string body, int first, int last)
    : Node({NODE_NONE, {}, {}, first, last}), unknownType(std::move(word)) {
  auto text = std::make_unique<FString>();
  text->values.push_back(std::move(body));
  fields.emplace_back(FIELD_NONE, std::move(text));
}

void UnknownNode::print(Output& out, int indent) {
  printIndent(out, indent);
  if (!name.empty()) {
    out.write("DEF ");
    out.write(name);
    out.put(' ');
  }
  out.write(unknownType);
  out.put(' ');
  if (const auto* body = getValue<FString>(FIELD_NONE)) out.write(body->values.front());
  out.put('\n');
  warning("unknown node type >%s< (this may cause problems)\n", unknownType.c_str());
}

}  // namespace varimesh
