// Joining: comparing and merging shapes.
#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>

#include "scene/attributenodes.h"
#include "scene/joinmode.h"
#include "shapes/shapenode.h"
#include "values/hash.h"

namespace varimesh {
namespace {

bool isCounted(int binding) {
  return binding == PER_PART || binding == PER_FACE || binding == PER_VERTEX;
}

// Whether the second shape will get material indices by face: it is drawn in one material, while
// the first already has such indices, or will get them too.
bool willGetIndex(const ShapeNode& shape, const ShapeNode& other) {
  return (Node::joinmode & JOIN_MATERIALS) != 0 && other.state.materialBinding == OVERALL &&
         (shape.state.materialBinding == PER_FACE_INDEXED ||
          shape.state.materialBinding == OVERALL);
}

// Lists that are of no use may hold any number.
int addIndex(int index, int count) {
  return static_cast<int>(
      std::min<std::int64_t>(std::int64_t{index} + count, std::numeric_limits<int>::max()));
}

// Puts an index list in front of another one. `count` is the number of entries that come before
// those of the second list's own node; -1 stands for itself. The first list is closed if need be.
void joinIndexList(Node& node, Node& other, FieldId field, int count, bool isClosed) {
  auto* mine = node.getValue<FLong>(field);
  if (auto* list = other.getValue<FLong>(field); list != nullptr && count != 0) {
    for (int& index : list->values) {
      if (index != -1) index = addIndex(index, count);
    }
  }
  if (mine != nullptr && isClosed && mine->values.back() != -1) mine->values.push_back(-1);
  Node::joinFields(node.getField(field), other.getField(field));
}

// How much of an index list each polygon uses.
enum class Use { oneValue, valuePerSegment, valuePerCorner };

Use getUse(const Node& shape, int binding) {
  if (binding == PER_VERTEX_INDEXED) return Use::valuePerCorner;
  return binding == PER_PART_INDEXED && shape.type == NODE_IndexedLineSet ? Use::valuePerSegment
                                                                          : Use::oneValue;
}

// Whether a list ends with the shape's last polygon, and holds only index numbers.
bool isExactList(std::span<const int> positions, std::span<const int> list, Use use) {
  std::size_t end = 0;
  while (!positions.empty()) {
    const auto corners = static_cast<std::size_t>(
        std::find(positions.begin(), positions.end(), -1) - positions.begin());
    positions = positions.subspan(std::min(corners + 1, positions.size()));
    std::size_t count = 1;
    if (use != Use::oneValue)
      count = use == Use::valuePerCorner || corners == 0 ? corners : corners - 1;
    if (count > list.size() - end) return false;
    const auto values = list.subspan(end, count);
    if (std::any_of(values.begin(), values.end(), [](int index) { return index < 0; }))
      return false;
    end += count;
    if (use != Use::oneValue && end < list.size() && list[end] == -1) ++end;
  }
  return end == list.size();
}

// Whether a list has only numbers below `count`, and -1. Others are an error of the shape, and must
// not turn into numbers of somebody else's entries.
bool isInRange(std::span<const int> list, int count) {
  return std::all_of(list.begin(), list.end(), [&](int i) { return i >= -1 && i < count; });
}

}  // namespace

std::uint64_t ShapeNode::getJoinSignature() {
  if (used != 0 || !isInJoinableBindings()) return 0;
  const auto hasField = [&](FieldId field) -> std::uint64_t {
    return getField(field) != nullptr ? 1 : 0;
  };
  // Shapes of one material may be joined with shapes that have got indices by face.
  const std::uint64_t hasIndex = hasField(FIELD_materialIndex);
  const bool isMergeable = state.materialBinding == OVERALL ||
                           (state.materialBinding == PER_FACE_INDEXED && hasIndex != 0);
  std::uint64_t hash = reinterpret_cast<std::uintptr_t>(state.textureNode);
  const auto mix = [&](std::uint64_t value) { hash = mixHash(hash, value); };
  mix(static_cast<std::uint64_t>(type));
  mix(hasField(FIELD_coordIndex) << 2U | hasField(FIELD_normalIndex) << 1U |
      hasField(FIELD_textureCoordIndex));
  mix(isMergeable ? 100 : static_cast<std::uint64_t>(state.materialBinding) * 2 + hasIndex);
  mix(static_cast<std::uint64_t>(state.normalBinding));
  // What must not differ at all.
  if (state.normalBinding == OVERALL) mix(state.normalNode->getContentHash());
  if (hasUselessIndex()) mix(state.materialNode->getContentHash());
  return hash | 1U;
}

// A line set drawn in one material whose index list would come to life among several.
bool ShapeNode::hasUselessIndex() {
  return type == NODE_IndexedLineSet && state.materialBinding == OVERALL &&
         getField(FIELD_materialIndex) != nullptr;
}

// Entries that are counted from the start of a node's list, and lists that end elsewhere than the
// shape does, would shift. So would normals that are numbered like the points.
bool ShapeNode::isInJoinableBindings() {
  if (isCounted(state.materialBinding) && !state.materialNode->isDefault()) return false;
  if (isCounted(state.normalBinding) && !state.normalNode->isDefault()) return false;
  // Without a list of their own, indices by corner or by segment are those of the points.
  const auto followPoints = [&](int binding, FieldId field) {
    return getField(field) == nullptr && getUse(*this, binding) != Use::oneValue;
  };
  if (followPoints(state.materialBinding, FIELD_materialIndex)) return false;
  if (followPoints(state.normalBinding, FIELD_normalIndex) && !state.normalNode->isDefault()) {
    return false;
  }
  return haveExactLists();
}

bool ShapeNode::haveExactLists() {
  if (exactLists_ >= 0) return exactLists_ != 0;
  const auto getList = [&](FieldId field) {
    const auto* list = getValue<FLong>(field);
    return list != nullptr ? std::span<const int>(list->values) : std::span<const int>();
  };
  const auto positions = getList(FIELD_coordIndex);
  const auto isExact = [&](FieldId field, int binding, int count) {
    if (getField(field) == nullptr || binding == OVERALL || isCounted(binding)) return true;
    return isExactList(positions, getList(field), getUse(*this, binding)) &&
           isInRange(getList(field), count);
  };
  constexpr int any = std::numeric_limits<int>::max();
  // Material numbers start again from the first, and default nodes are not looked into.
  const auto count = [](AttributeNode& node) {
    return node.isDefault() ? any : node.countValues();
  };
  const bool areExact =
      isInRange(positions, count(*state.coordNode)) &&
      isExact(FIELD_materialIndex, state.materialBinding, any) &&
      isExact(FIELD_normalIndex, state.normalBinding, count(*state.normalNode)) &&
      isExact(FIELD_textureCoordIndex, PER_VERTEX_INDEXED, count(*state.textureCoordNode));
  exactLists_ = areExact ? 1 : 0;
  return areExact;
}

int ShapeNode::joinable(Node& node) {
  if (type != node.type || used != 0 || node.used != 0) return 0;
  auto& other = static_cast<ShapeNode&>(node);
  const auto isInBothOrNone = [&](FieldId field) {
    return (getField(field) == nullptr) == (other.getField(field) == nullptr);
  };
  const bool hasIndex = getField(FIELD_materialIndex) != nullptr;
  const bool otherHasIndex = other.getField(FIELD_materialIndex) != nullptr;
  const bool isIndexMade =
      hasIndex && willGetIndex(*this, other) && (!otherHasIndex || type == NODE_IndexedFaceSet);

  if (!isInBothOrNone(FIELD_coordIndex)) return 0;
  if (hasIndex != otherHasIndex && !isIndexMade) return 0;
  if (!isInJoinableBindings() || !other.isInJoinableBindings()) return 0;
  if (!isInBothOrNone(FIELD_normalIndex) || !isInBothOrNone(FIELD_textureCoordIndex)) return 0;
  if (state.textureNode != other.state.textureNode) return 0;
  // Nodes that are passed in different surroundings do not look alike, even where they are equal.
  if (state.materialBinding != other.state.materialBinding && !isIndexMade) return 0;
  if (state.normalBinding != other.state.normalBinding) return 0;
  if (state.vertexOrdering != other.state.vertexOrdering ||
      state.faceType != other.state.faceType) {
    return 0;
  }
  // Which normal is the one for all faces would no longer be clear.
  if ((joinmode & JOIN_NORMALS) != 0 &&
      (state.normalBinding == OVERALL || other.state.normalBinding == OVERALL)) {
    return 0;
  }
  if ((joinmode & JOIN_MATERIALS) != 0 && (hasUselessIndex() || other.hasUselessIndex())) return 0;
  return 1;
}

// The numbers of the other shape go up by the entries that its nodes have got in front of their
// own. A node that both shapes use has got none.
void ShapeNode::makeJoin(Node& node) {
  auto& other = static_cast<ShapeNode&>(node);
  const auto getOffset = [&](int bit, const AttributeNode* mine, const AttributeNode* others) {
    return (joinmode & bit) != 0 && mine != others ? mine->count : 0;
  };
  joinIndexList(*this, other, FIELD_coordIndex,
                getOffset(JOIN_COORDS, state.coordNode, other.state.coordNode), true);
  if ((joinmode & JOIN_MATERIALS) != 0) {
    if (getField(FIELD_materialIndex) == nullptr ||
        other.getField(FIELD_materialIndex) == nullptr) {
      error("join mode is material - second materiaIndex == NULL\n");
    }
  }
  joinIndexList(*this, other, FIELD_materialIndex,
                getOffset(JOIN_MATERIALS, state.materialNode, other.state.materialNode), false);
  joinIndexList(*this, other, FIELD_normalIndex,
                getOffset(JOIN_NORMALS, state.normalNode, other.state.normalNode), false);
  joinIndexList(*this, other, FIELD_textureCoordIndex,
                getOffset(JOIN_TEXTURECOORDS, state.textureCoordNode, other.state.textureCoordNode),
                false);
  cleanUpLast();
}

// Indices beyond the materials of a node start again from the first. That must be worked out while
// the node has no other materials than its own.
void ShapeNode::wrapMaterialIndex() {
  auto* list = getValue<FLong>(FIELD_materialIndex);
  const int count = state.materialNode->count;
  if (list == nullptr || count == 0) return;
  for (int& index : list->values) {
    if (index >= count) index %= count;
  }
}

void ShapeNode::setMaterialBinding(int binding) {
  state.materialBinding = binding;
  materialBinding = binding;
}

}  // namespace varimesh
