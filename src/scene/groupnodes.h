// Nodes with children. Scenes may be nested deeper than a call stack, and USE references may chain
// without end, so no operation of a group calls itself for its children: each walks the tree below
// with a stack of its own.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "scene/node.h"
#include "scene/state.h"

namespace varimesh {

using NodeList = std::vector<std::unique_ptr<Node>>;

// Group, LOD, LevelOfDetail and Switch: what their children set stays in force behind them.
class GroupNode : public Node {
 public:
  // What of the traversal state is restored behind the group.
  enum class Scope { none, transformation, everything };

  NodeList children;
  std::uint64_t joinSignature = 0;  // of the group with all below it, once that has been joined
  bool isOpen = false;  // while the traversal is inside: a USE that comes here again is an error

  GroupNode(NodeInit&& init, NodeList nodes) : Node(std::move(init)), children(std::move(nodes)) {}
  ~GroupNode() override;

  void print(Output& out, int indent) override;
  void setupDepends(State& state) override;
  void setupCamera(Node*& camera) override;
  void markAsUsed() override;
  void printTree(Output& out, int indent) override;
  GroupNode* asGroup() override { return this; }

  std::uint64_t getJoinSignature() override { return joinSignature; }

  [[nodiscard]] virtual Scope getScope() const { return Scope::none; }
  // What is written before and behind the children; printHead leaves the indent of the children.
  virtual void printOpening(Output& out, int& indent) const;
  virtual void printClosing(Output& out, int indent) const;

 private:
  template <class Visit>
  void forEachBelow(Visit visit);
};

// Separator and WWWAnchor.
class SeparatorNode : public GroupNode {
 public:
  using GroupNode::GroupNode;
  [[nodiscard]] Scope getScope() const override { return Scope::everything; }
};

class TransformSeparatorNode : public GroupNode {
 public:
  using GroupNode::GroupNode;
  [[nodiscard]] Scope getScope() const override { return Scope::transformation; }
};

// The top of the tree: writes the file header and then its children, without braces.
class RootNode : public GroupNode {
 public:
  RootNode(std::string header, NodeList nodes)
      : GroupNode(NodeInit{}, std::move(nodes)), header_(std::move(header)) {}
  void printOpening(Output& out, int& indent) const override;
  void printClosing(Output&, int) const override {}
  // Merges equivalent neighbouring nodes, at any depth, and deletes what has been absorbed.
  void join();

 private:
  std::string header_;
};

}  // namespace varimesh
