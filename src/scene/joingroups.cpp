// Joining: comparing, preparing and merging two groups. Each is a walk over both trees in step.
#include <algorithm>
#include <array>
#include <unordered_map>

#include "scene/attributenodes.h"
#include "scene/bindingnodes.h"
#include "scene/joinmode.h"
#include "scene/joinshape.h"
#include "scene/joinwalk.h"

namespace varimesh {
namespace {

struct Cursor {
  GroupNode* group;
  std::size_t next = 0;

  Node* take() {
    while (next < group->children.size() && isInsertedBinding(*group->children[next])) ++next;
    return next < group->children.size() ? group->children[next++].get() : nullptr;
  }
};

struct CursorPair {
  Cursor first, second;
};

// Calls visit(child, partner) for the children of both groups in order, at any depth. Where one
// list is longer, the partner missing is null. Ends when visit answers false.
template <class Visit>
bool forEachPair(GroupNode& group, GroupNode& other, Visit visit) {
  std::vector<CursorPair> pairs{{{&group}, {&other}}};
  while (!pairs.empty()) {
    Node* child = pairs.back().first.take();
    Node* partner = pairs.back().second.take();
    if (child == nullptr && partner == nullptr) {
      pairs.pop_back();
      continue;
    }
    if (!visit(child, partner)) return false;
    if (child != nullptr && partner != nullptr && child->asGroup() != nullptr) {
      pairs.push_back({{child->asGroup()}, {partner->asGroup()}});
    }
  }
  return true;
}

template <class Visit>
void forEachInTree(GroupNode& group, Visit visit) {
  std::vector<Cursor> cursors{{&group}};
  while (!cursors.empty()) {
    Cursor& cursor = cursors.back();
    if (cursor.next == cursor.group->children.size()) {
      cursors.pop_back();
      continue;
    }
    Node& child = *cursor.group->children[cursor.next++];
    visit(child);
    if (child.asGroup() != nullptr) cursors.push_back({child.asGroup()});
  }
}

bool haveEqualValues(const Field& a, const Field& b) {
  if (a.number != b.number || a.size() != b.size()) return false;
  if (a.size() == 0) return true;
  if (const auto* word = dynamic_cast<const FEnum*>(a.value.get())) {
    return word->value == static_cast<const FEnum&>(*b.value).value;
  }
  if (const auto* text = dynamic_cast<const FString*>(a.value.get())) {
    return text->values == static_cast<const FString&>(*b.value).values;
  }
  return false;
}

bool haveEqualHeads(const GroupNode& group, const GroupNode& other) {
  return group.type == other.type && group.used == 0 && other.used == 0 &&
         std::string_view(group.fieldsText) == other.fieldsText &&
         std::equal(group.fields.begin(), group.fields.end(), other.fields.begin(),
                    other.fields.end(), haveEqualValues) &&
         !isLeftAlone(group);
}

// What is noted and marked for each kind of data that differs.
struct Preparation {
  int bit;
  int mark;
  NodeType type;
};
constexpr std::array<Preparation, 4> preparations = {{
    {JOIN_MATERIALS, PREPARED_MATERIALS, NODE_Material},
    {JOIN_NORMALS, PREPARED_NORMALS, NODE_Normal},
    {JOIN_COORDS, PREPARED_COORDS, NODE_Coordinate3},
    {JOIN_TEXTURECOORDS, PREPARED_TEXTURECOORDS, NODE_TextureCoordinate2},
}};

void noteCounts(GroupNode& group, NodeType type) {
  for (const auto& child : group.children) {
    if (child->type != type) continue;
    auto& node = static_cast<AttributeNode&>(*child);
    node.count = node.countValues();
  }
}

// Gives every face set material indices, and the binding that goes with them in front.
void prepareMaterials(GroupNode& group) {
  NodeList prepared;
  prepared.reserve(group.children.size());
  for (auto& child : group.children) {
    if (JoinShape* shape = child->asJoinShape()) shape->wrapMaterialIndex();
    const bool isBare = child->type == NODE_IndexedFaceSet &&
                        (child->getField(FIELD_materialIndex) == nullptr ||
                         child->asJoinShape()->getCapturedState().materialBinding == OVERALL);
    if (isBare) {
      auto binding = std::make_unique<MaterialBindingNode>(NodeInit{.type = NODE_MaterialBinding});
      binding->fields.emplace_back(FIELD_value,
                                   std::make_unique<FEnum>(PER_FACE_INDEXED, KIND_binding));
      binding->joinState |= PREPARED_MATERIALS;
      prepared.push_back(std::move(binding));
      MaterialNode::createMaterialIndex(*child, 0);
    }
    prepared.push_back(std::move(child));
  }
  group.children = std::move(prepared);
}

// Whether a group has yet to be prepared for a kind of data that differs.
bool isDue(const GroupNode& group, int bit, int mark) {
  return (Node::joinmode & bit) != 0 && (group.joinState & mark) == 0;
}

void noteCounts(GroupNode& group) {
  for (const Preparation& p : preparations) {
    if (isDue(group, p.bit, p.mark)) noteCounts(group, p.type);
  }
}

}  // namespace

bool areGroupsJoinable(GroupNode& group, GroupNode& other) {
  return haveEqualHeads(group, other) && forEachPair(group, other, [](Node* child, Node* partner) {
           if (child == nullptr || partner == nullptr) return false;
           if (GroupNode* inner = child->asGroup()) {
             return partner->asGroup() != nullptr && haveEqualHeads(*inner, *partner->asGroup());
           }
           return child->joinable(*partner) != 0;
         });
}

bool isSelfContained(GroupNode& group) {
  std::unordered_map<const Node*, int> users;
  forEachInTree(group, [&](Node& node) {
    if (JoinShape* shape = node.asJoinShape()) {
      const State& state = shape->getCapturedState();
      ++users[state.coordNode];
      ++users[state.materialNode];
      ++users[state.normalNode];
      ++users[state.textureCoordNode];
    }
  });
  bool isContained = true;
  forEachInTree(group, [&](Node& node) {
    const bool isAttribute = node.type == NODE_Coordinate3 || node.type == NODE_Material ||
                             node.type == NODE_Normal || node.type == NODE_TextureCoordinate2;
    if (!isAttribute) return;
    const auto& attribute = static_cast<const AttributeNode&>(node);
    if (attribute.fixedUser != nullptr || attribute.getUsers() != users[&node]) isContained = false;
  });
  return isContained;
}

// Counts first, in the whole tree: a shape may have its materials from another group of it.
void prepareForJoin(GroupNode& group) {
  std::vector<GroupNode*> groups{&group};
  forEachInTree(group, [&](Node& node) {
    if (node.asGroup() != nullptr) groups.push_back(node.asGroup());
  });
  for (GroupNode* inner : groups) noteCounts(*inner);
  for (GroupNode* inner : groups) {
    const bool isMaterialDue = isDue(*inner, JOIN_MATERIALS, PREPARED_MATERIALS);
    for (const Preparation& p : preparations) {
      if ((Node::joinmode & p.bit) != 0) inner->joinState |= p.mark;
    }
    if (isMaterialDue) prepareMaterials(*inner);
  }
}

void makeGroupJoin(GroupNode& group, GroupNode& other) {
  forEachPair(group, other, [](Node* child, Node* partner) {
    if (child == nullptr || partner == nullptr) return true;
    if (child->asGroup() == nullptr) child->makeJoin(*partner);
    partner->firstLine = 0;
    partner->lastLine = 0;
    return true;
  });
}

}  // namespace varimesh
