#include "scene/groupnodes.h"

#include "scene/dependswalk.h"

namespace varimesh {

// Destroys the nodes below in the order in which they stand, children before their group.
GroupNode::~GroupNode() {
  struct Frame {
    std::unique_ptr<Node> group;
    NodeList children;
    std::size_t next = 0;
  };
  std::vector<Frame> frames;
  frames.push_back({nullptr, std::move(children)});
  while (!frames.empty()) {
    Frame& frame = frames.back();
    if (frame.next == frame.children.size()) {
      const auto done = std::move(frame.group);
      frames.pop_back();
      continue;
    }
    std::unique_ptr<Node> child = std::move(frame.children[frame.next++]);
    if (GroupNode* group = child->asGroup()) {
      NodeList below = std::move(group->children);
      group->children.clear();
      frames.push_back({std::move(child), std::move(below)});
    }
  }
}

// Calls visit(node, depth) for every node below, each before its own children; a node at the first
// level has depth 1.
template <class Visit>
void GroupNode::forEachBelow(Visit visit) {
  struct Frame {
    GroupNode* group;
    std::size_t next;
  };
  std::vector<Frame> frames{{this, 0}};
  while (!frames.empty()) {
    Frame& frame = frames.back();
    if (frame.next == frame.group->children.size()) {
      frames.pop_back();
      continue;
    }
    Node& child = *frame.group->children[frame.next++];
    visit(child, static_cast<int>(frames.size()));
    if (GroupNode* group = child.asGroup()) frames.push_back({group, 0});
  }
}

// A node's fields are not needed once it has been written.
void GroupNode::print(Output& out, int indent) {
  struct Frame {
    GroupNode* group;
    std::size_t next;
    int indent;
    int childIndent;
  };
  std::vector<Frame> frames;
  const auto open = [&](GroupNode& group, int column) {
    int childColumn = column;
    group.printOpening(out, childColumn);
    frames.push_back({&group, 0, column, childColumn});
  };
  open(*this, indent);
  while (!frames.empty()) {
    Frame& frame = frames.back();
    if (frame.next == frame.group->children.size()) {
      frame.group->printClosing(out, frame.indent);
      if (frames.size() > 1) frame.group->deleteFields();
      frames.pop_back();
      continue;
    }
    Node& child = *frame.group->children[frame.next++];
    if (GroupNode* group = child.asGroup()) {
      open(*group, frame.childIndent);
    } else {
      child.print(out, frame.childIndent);
      child.deleteFields();
    }
  }
}

void GroupNode::printOpening(Output& out, int& indent) const {
  printHead(out, indent);
  printFields(out, indent);
}

void GroupNode::printClosing(Output& out, int indent) const { printTail(out, indent); }

void GroupNode::setupDepends(State& state) { DependsWalk(state).run(*this); }

void GroupNode::setupCamera(Node*& camera) {
  forEachBelow([&](Node& node, int) {
    if (node.asGroup() == nullptr) node.setupCamera(camera);
  });
}

void GroupNode::markAsUsed() {
  if (used != 0) return;  // then all below are marked already
  used = 1;
  forEachBelow([](Node& node, int) { node.used = 1; });
}

void GroupNode::printTree(Output& out, int indent) {
  constexpr int step = 4;
  Node::printTree(out, indent);
  forEachBelow([&](Node& node, int depth) {
    const int column = addColumns(indent, step * depth);
    if (node.asGroup() != nullptr) {
      node.Node::printTree(out, column);
    } else {
      node.printTree(out, column);
    }
  });
}

void RootNode::printOpening(Output& out, int&) const {
  out.write(header_);
  out.put('\n');
}

}  // namespace varimesh
