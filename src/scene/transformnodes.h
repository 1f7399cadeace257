// Nodes that transform what follows them.
#pragma once

#include "scene/node.h"

namespace varimesh {

class TranslationNode : public Node {
 public:
  using Node::Node;
  void setupDepends(State& state) override;
};

class ScaleNode : public Node {
 public:
  using Node::Node;
  void setupDepends(State& state) override;
};

class RotationNode : public Node {
 public:
  using Node::Node;
  void setupDepends(State& state) override;
};

class MatrixTransformNode : public Node {
 public:
  using Node::Node;
  void setupDepends(State& state) override;
};

class TransformNode : public Node {
 public:
  using Node::Node;
  void setupDepends(State& state) override;
};

}  // namespace varimesh
