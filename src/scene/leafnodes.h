// References, and nodes of a type that the reader does not know.
#pragma once

#include <string>

#include "scene/node.h"

namespace varimesh {

// A USE reference.
class UseNode : public Node {
 public:
  std::string identifier;

  UseNode(std::string reference, int first, int last);
  void print(Output& out, int indent) override;
  void setupDepends(State& state) override;
  UseNode* asUse() override { return this; }

  // The named node; an error when there is none.
  [[nodiscard]] Node& resolve() const;
};

// Keeps the text of a node's body and writes it back as it came.
class UnknownNode : public Node {
 public:
  std::string unknownType;

  UnknownNode(std::string word, std::string body, int first, int last);
  void print(Output& out, int indent) override;
};

}  // namespace varimesh
