// The traversal that resolves dependencies: every node in order, with the state in force at it.
#pragma once

#include <cstdint>
#include <vector>

#include "scene/state.h"

namespace varimesh {

class GroupNode;
class UseNode;

// Walks a tree depth first, and at each USE the named node as if it stood there. Keeps its own
// stack, since references can chain to any depth; bounds the number of visits, since references
// can multiply without end.
class DependsWalk {
 public:
  explicit DependsWalk(State& state) : state_(state) {}
  void run(Node& root);

 private:
  static constexpr std::int64_t mostUseVisits = 16777216;

  struct Frame {
    GroupNode* group;
    std::size_t next;
    UseNode* use;  // the reference through which the group was entered, or null
  };

  void visit(Node& node);
  void visitUse(UseNode& use);
  void enter(GroupNode& group, UseNode* use);
  void leave();
  void count();

  State& state_;
  std::vector<Frame> frames_;
  std::vector<State> savedStates_;
  std::vector<UseNode*> openUses_;
  std::int64_t useVisits_ = 0;
};

}  // namespace varimesh
