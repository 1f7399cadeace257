// Shapes that are written as they came. They only make sure that the attribute entries which they
// address by position keep their positions in the output.
#pragma once

#include "scene/node.h"
#include "scene/state.h"

namespace varimesh {

class PointNode : public Node {
 public:
  using Node::Node;
  void setupDepends(State& state) override;
};

class ConeNode : public Node {
 public:
  using Node::Node;
  void setupDepends(State& state) override;
};

class CubeNode : public Node {
 public:
  using Node::Node;
  void setupDepends(State& state) override;
};

class CylinderNode : public Node {
 public:
  using Node::Node;
  void setupDepends(State& state) override;
};

class SphereNode : public Node {
 public:
  using Node::Node;
  void setupDepends(State& state) override;
};

}  // namespace varimesh
