// Attribute nodes that are a setting rather than a list: bindings, texture and shape hints.
#pragma once

#include <optional>

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

  // The hints given, noted when the node is passed: shapes repeat them when they are written, and
  // by then the node's own fields are gone.
  struct Hints {
    std::optional<int> vertexOrdering;
    std::optional<int> shapeType;
    std::optional<int> faceType;
    std::optional<float> creaseAngle;
  };
  [[nodiscard]] const Hints& getHints() const { return hints_; }

 private:
  Hints hints_;
};

}  // namespace varimesh
