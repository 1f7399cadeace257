// Attribute nodes that are a setting rather than a list: bindings, texture and shape hints.
#pragma once

#include "scene/node.h"
#include "scene/state.h"

namespace varimesh {

// What both binding nodes share.
class BindingNode : public Node {
 public:
  using Node::Node;
  int joinable(Node& other) override;
  std::uint64_t getJoinSignature() override;

 protected:
  // The binding number of the `value` field; DEFAULT, with a warning, for a number that is none.
  [[nodiscard]] int getBinding();
};

class MaterialBindingNode : public BindingNode {
 public:
  using BindingNode::BindingNode;
  void setupDepends(State& state) override { state.materialBinding = getBinding(); }
  void printTree(Output& out, int indent) override;
};

class NormalBindingNode : public BindingNode {
 public:
  using BindingNode::BindingNode;
  void setupDepends(State& state) override { state.normalBinding = getBinding(); }
};

class TextureNode : public Node {
 public:
  using Node::Node;
  void setupDepends(State& state) override { state.textureNode = this; }
};

class ShapeHintsNode : public Node {
 public:
  using Node::Node;
  void setupDepends(State& state) override;
};

}  // namespace varimesh
