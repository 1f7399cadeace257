#include "scene/dependswalk.h"

#include "scene/groupnodes.h"
#include "scene/leafnodes.h"

namespace varimesh {

void DependsWalk::run(Node& root) {
  visit(root);
  while (!frames_.empty()) {
    Frame& frame = frames_.back();
    if (frame.next == frame.group->children.size()) {
      leave();
    } else {
      visit(*frame.group->children[frame.next++]);
    }
  }
}

void DependsWalk::visit(Node& node) {
  if (!openUses_.empty() && node.asUse() == nullptr) count();
  if (GroupNode* group = node.asGroup()) {
    enter(*group, nullptr);
  } else if (UseNode* use = node.asUse()) {
    visitUse(*use);
  } else {
    node.setupDepends(state_);
  }
}

void DependsWalk::visitUse(UseNode& use) {
  Node& target = use.resolve();
  openUses_.push_back(&use);
  count();
  if (GroupNode* group = target.asGroup()) {
    if (group->isOpen) {
      use.error("USE identifier >%s< names a node that contains it\n", use.identifier.c_str());
    }
    enter(*group, &use);
    return;
  }
  target.setupDepends(state_);
  target.markAsUsed();
  openUses_.pop_back();
}

void DependsWalk::enter(GroupNode& group, UseNode* use) {
  group.isOpen = true;
  if (group.getScope() != GroupNode::Scope::none) savedStates_.push_back(state_);
  frames_.push_back({&group, 0, use});
}

void DependsWalk::leave() {
  const Frame frame = frames_.back();
  frames_.pop_back();
  frame.group->isOpen = false;
  if (const auto scope = frame.group->getScope(); scope != GroupNode::Scope::none) {
    if (scope == GroupNode::Scope::everything) {
      state_ = savedStates_.back();
    } else {
      state_.matrix = savedStates_.back().matrix;
    }
    savedStates_.pop_back();
  }
  if (frame.use == nullptr) return;
  frame.group->markAsUsed();
  openUses_.pop_back();
}

void DependsWalk::count() {
  if (++useVisits_ > mostUseVisits) openUses_.back()->error("too many USE references\n");
}

}  // namespace varimesh
