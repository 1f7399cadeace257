#include "scene/joinwalk.h"

#include <algorithm>
#include <functional>
#include <string>

#include "scene/joinmode.h"
#include "values/hash.h"

namespace varimesh {
namespace {

bool isSeparatorOrGroup(const Node& node) {
  return node.type == NODE_Separator || node.type == NODE_Group;
}

bool isOtherGroup(const Node& node) {
  return node.type == NODE_TransformSeparator || node.type == NODE_WWWAnchor;
}

// Whether attributes set inside stay in force behind the group.
bool isLeaky(GroupNode& group) { return group.getScope() != GroupNode::Scope::everything; }

// Whether something behind the group could see what is set in it. Shapes set nothing, and nothing
// gets out of a separator.
bool setsAttributes(GroupNode& group) {
  return std::any_of(group.children.begin(), group.children.end(), [](const auto& child) {
    GroupNode* inner = child->asGroup();
    return inner != nullptr ? isLeaky(*inner) : child->asJoinShape() == nullptr;
  });
}

std::uint64_t mixText(std::uint64_t hash, std::string_view text) {
  return mixHash(hash, std::uint64_t{std::hash<std::string_view>()(text)});
}

}  // namespace

void JoinWalk::run(GroupNode& root) {
  enter(root, true);
  while (!frames_.empty()) {
    Frame& frame = frames_.back();
    if (GroupNode* inner = findInnerGroup(frame)) {
      const bool isLast = frame.next == frame.group->children.size();
      enter(*inner, isLast && (frame.isTail || !isLeaky(*frame.group)));
      continue;
    }
    joinChildren(*frame.group, frame.isTail);
    frame.group->joinSignature = calcSignature(*frame.group);
    frames_.pop_back();
  }
}

void JoinWalk::enter(GroupNode& group, bool isTail) {
  if (isLeftAlone(group)) return;
  group.joinState |= CHILDREN_JOINED;
  frames_.push_back({&group, Phase::separators, 0, isTail});
}

GroupNode* JoinWalk::findInnerGroup(Frame& frame) const {
  NodeList& children = frame.group->children;
  while (frame.phase != Phase::children) {
    while (frame.next < children.size()) {
      Node& child = *children[frame.next++];
      const bool isDue =
          frame.phase == Phase::separators ? isSeparatorOrGroup(child) : isOtherGroup(child);
      if (isDue) return child.asGroup();
    }
    frame.phase = frame.phase == Phase::separators ? Phase::otherGroups : Phase::children;
    frame.next = 0;
  }
  return nullptr;
}

void JoinWalk::joinChildren(GroupNode& group, bool isTail) {
  NodeList& children = group.children;
  const bool isUnseen = isTail || !isLeaky(group);
  for (std::size_t first = 0; first < children.size();) {
    std::size_t last = first + 1;
    while (last < children.size() && children[last]->type == children[first]->type) ++last;
    const bool canJoin =
        children[first]->asGroup() == nullptr || isSeparatorOrGroup(*children[first]);
    if (canJoin && last - first > 1) joinRow(group, first, last, isUnseen);
    first = last;
  }
  const std::size_t count = children.size();
  dissolveLast(group, isTail);
  deleteJoined(group, count);
}

// Joins a row of siblings of one type, from first to last - 1.
void JoinWalk::joinRow(GroupNode& group, std::size_t first, std::size_t last, bool isUnseen) {
  positions_.clear();
  for (std::size_t i = first; i < last; ++i) {
    const std::uint64_t signature = group.children[i]->getJoinSignature();
    if (signature != 0) positions_[signature].push_back(i);
  }
  for (std::size_t i = first; i + 1 < last; ++i) {
    joinNode(*group.children[i], group.children, i, last, isUnseen);
  }
}

// Looks for the first later sibling that can take the node. What comparisons that fail have found
// to differ counts on: the bits of joinmode are not cleared in between. So the nearest groups are
// really compared; further away only those are whose signature does not rule them out, since a row
// of groups that are all different would otherwise be compared pair by pair.
void JoinWalk::joinNode(Node& node, NodeList& siblings, std::size_t position, std::size_t last,
                        bool isUnseen) {
  constexpr std::size_t nearGroups = 16;
  Node::joinmode = 0;
  const std::uint64_t signature = node.getJoinSignature();
  if (signature == 0) return;
  GroupNode* group = node.asGroup();
  // What stands between two groups sees what the first one sets, so that only the next can take it.
  if (group != nullptr && isLeaky(*group) && setsAttributes(*group)) {
    last = std::min(last, position + 2);
  }

  const auto tryPartner = [&](std::size_t i) {
    Node& other = *siblings[i];
    const bool isVisible = !(isUnseen && i + 1 == siblings.size());
    if (!isJoinable(node, other, isVisible)) return false;
    if (group == nullptr || isSelfContained(*group)) absorb(node, other);
    return true;  // what other nodes need of the group, they need wherever it goes
  };

  std::size_t next = position + 1;
  if (group != nullptr) {
    for (; next < std::min(last, position + 1 + nearGroups); ++next) {
      if (tryPartner(next)) return;
    }
  }
  const auto& candidates = positions_[signature];
  for (auto i = std::lower_bound(candidates.begin(), candidates.end(), next);
       i != candidates.end() && *i < last; ++i) {
    if (tryPartner(*i)) return;
  }
}

bool JoinWalk::isJoinable(Node& node, Node& other, bool isVisible) const {
  GroupNode* group = node.asGroup();
  if (group == nullptr) return node.joinable(other) != 0;
  if (!areGroupsJoinable(*group, *other.asGroup())) return false;
  return !(isLeaky(*group) && Node::joinmode != 0 && isVisible);
}

void JoinWalk::absorb(Node& node, Node& other) const {
  node.joinState |= JOINED;
  if (GroupNode* group = node.asGroup()) {
    prepareForJoin(*group);
    prepareForJoin(*other.asGroup());
    makeGroupJoin(*group, *other.asGroup());
  } else {
    node.makeJoin(other);
  }
  other.firstLine = 0;
  other.lastLine = 0;
}

// Moves the children of a separator or group at the end up to its parent, unless something that
// follows would then see what it sets.
void JoinWalk::dissolveLast(GroupNode& group, bool isTail) const {
  if (group.children.empty()) return;
  Node& last = *group.children.back();
  if (!isSeparatorOrGroup(last) || (last.joinState & NEVER_DISSOLVED) != 0 || last.used != 0)
    return;
  if (last.type == NODE_Separator && isLeaky(group) && !isTail) return;
  last.joinState |= JOINED;
  NodeList below = std::move(last.asGroup()->children);
  last.asGroup()->children.clear();
  for (auto& child : below) group.children.push_back(std::move(child));
}

// Deletes what has been absorbed among the first `count` children; those behind have just come from
// a group that was dissolved.
void JoinWalk::deleteJoined(GroupNode& group, std::size_t count) {
  NodeList& children = group.children;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < count; ++i) {
    if ((children[i]->joinState & JOINED) != 0) {
      children[i].reset();
    } else {
      std::swap(children[kept++], children[i]);
    }
  }
  const auto first = children.begin();
  children.erase(first + static_cast<std::ptrdiff_t>(kept),
                 first + static_cast<std::ptrdiff_t>(count));
}

// Of what areGroupsJoinable compares, as far as it must be equal.
std::uint64_t JoinWalk::calcSignature(const GroupNode& group) {
  if (group.used != 0) return 0;
  std::uint64_t hash = mixText(static_cast<std::uint64_t>(group.type), group.fieldsText);
  for (const Field& field : group.fields) {
    hash = mixHash(hash, static_cast<std::uint64_t>(field.number));
    if (const auto* text = dynamic_cast<const FString*>(field.value.get())) {
      for (const std::string& value : text->values) hash = mixText(hash, value);
    }
  }
  for (const auto& child : group.children) {
    if (isInsertedBinding(*child)) continue;
    const std::uint64_t signature = child->getJoinSignature();
    if (signature == 0) return 0;
    hash = mixHash(hash, signature);
  }
  return hash | 1U;
}

void RootNode::join() {
  if (children.size() == 1 && children.front()->type == NODE_Separator) {
    children.front()->joinState = NEVER_DISSOLVED;
  }
  JoinWalk().run(*this);
}

}  // namespace varimesh
