// Joining: which nodes meet, and what becomes of those that are absorbed.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "scene/groupnodes.h"

namespace varimesh {

// Walks a tree and joins every group: first the groups in it, then its children with each other.
// A node is absorbed into the first later sibling that can take it, within an unbroken row of
// siblings of its type; a group at the end is dissolved. Nesting is as deep as the reader admits,
// so the walk, and every comparison of two trees, keeps a stack of its own.
class JoinWalk {
 public:
  void run(GroupNode& root);

 private:
  enum class Phase { separators, otherGroups, children };
  struct Frame {
    GroupNode* group;
    Phase phase;
    std::size_t next;
    bool isTail;  // nothing follows that would see what gets out of the group
  };

  void enter(GroupNode& group, bool isTail);
  // The next group inside to be joined before the children of the frame's group meet, or null.
  GroupNode* findInnerGroup(Frame& frame) const;
  void joinChildren(GroupNode& group, bool isTail);
  // `isUnseen`: nothing that follows sees what the last child sets.
  void joinRow(GroupNode& group, std::size_t first, std::size_t last, bool isUnseen);
  void joinNode(Node& node, NodeList& siblings, std::size_t position, std::size_t last,
                bool isUnseen);
  [[nodiscard]] bool isJoinable(Node& node, Node& other, bool isVisible) const;
  void absorb(Node& node, Node& other) const;
  void dissolveLast(GroupNode& group, bool isTail) const;
  static void deleteJoined(GroupNode& group, std::size_t count);
  [[nodiscard]] static std::uint64_t calcSignature(const GroupNode& group);

  std::vector<Frame> frames_;
  // Of the present row: by signature, the positions of the siblings that have it, in order.
  std::unordered_map<std::uint64_t, std::vector<std::size_t>> positions_;
};

// Whether two groups are equal but for their attribute data: child by child, own fields included.
bool areGroupsJoinable(GroupNode& group, GroupNode& other);
// Whether all that uses an attribute node of the group lies in the group as well, so that nothing
// is left with a node that is gone.
bool isSelfContained(GroupNode& group);
// Gets a group ready for a join in which the kinds of data in Node::joinmode differ.
void prepareForJoin(GroupNode& group);
// Moves the content of a group into another, child by child.
void makeGroupJoin(GroupNode& group, GroupNode& other);

}  // namespace varimesh
