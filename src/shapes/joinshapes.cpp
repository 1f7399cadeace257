// Joining: comparing and merging shapes.
#include <algorithm>
#include <array>

#include "scene/attributenodes.h"
#include "scene/joinmode.h"
#include "shapes/shapenode.h"

namespace varimesh {
namespace {

bool isCounted(int binding) {
  return binding == PER_PART || binding == PER_FACE || binding == PER_VERTEX;
}

// Whether the second shape's missing material indices will be made: it is drawn in one material,
// while the first already has indices by face, or will get them.
bool willGetIndex(const State& state, const State& other) {
  return (Node::joinmode & JOIN_MATERIALS) != 0 && other.materialBinding == OVERALL &&
         (state.materialBinding == PER_FACE_INDEXED || state.materialBinding == OVERALL);
}

// Puts an index list in front of another one. `count` is the number of entries that come before
// those of the second list's own node; -1 stands for itself. The first list is closed if need be.
void joinIndexList(Node& node, Node& other, FieldId field, int count, bool isClosed) {
  auto* mine = node.getValue<FLong>(field);
  if (auto* list = other.getValue<FLong>(field); list != nullptr && count != 0) {
    for (int& index : list->values) {
      if (index != -1) index += count;
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
  const auto mix = [&](std::uint64_t value) {
    hash = (hash ^ value) * 0x9E3779B97F4A7C15U;
    hash ^= hash >> 31;
  };
  mix(static_cast<std::uint64_t>(type));
  mix(hasField(FIELD_coordIndex) << 2U | hasField(FIELD_normalIndex) << 1U |
      hasField(FIELD_textureCoordIndex));
  mix(isMergeable ? 100 : static_cast<std::uint64_t>(state.materialBinding) * 2 + hasIndex);
  mix(static_cast<std::uint64_t>(state.normalBinding));
  return hash | 1U;
}

// Entries that are counted from the start of a node's list, and lists that end elsewhere than the
// shape does, would shift. So would normals that are numbered like the points.
bool ShapeNode::isInJoinableBindings() {
  if (isCounted(state.materialBinding) && !state.materialNode->isDefault()) return false;
  if (isCounted(state.normalBinding) && !state.normalNode->isDefault()) return false;
  if (state.materialBinding == PER_VERTEX_INDEXED && getField(FIELD_materialIndex) == nullptr) {
    return false;
  }
  if (state.normalBinding == PER_VERTEX_INDEXED && getField(FIELD_normalIndex) == nullptr &&
      !state.normalNode->isDefault()) {
    return false;
  }
  return haveListsExactLength();
}

bool ShapeNode::haveListsExactLength() {
  if (exactLists_ >= 0) return exactLists_ != 0;
  const auto getList = [&](FieldId field) {
    const auto* list = getValue<FLong>(field);
    return list != nullptr ? std::span<const int>(list->values) : std::span<const int>();
  };
  const auto positions = getList(FIELD_coordIndex);
  const auto isExact = [&](FieldId field, int binding) {
    if (getField(field) == nullptr || binding == OVERALL || isCounted(binding)) return true;
    return isExactList(positions, getList(field), getUse(*this, binding));
  };
  exactLists_ = isExact(FIELD_materialIndex, state.materialBinding) &&
                        isExact(FIELD_normalIndex, state.normalBinding) &&
                        isExact(FIELD_textureCoordIndex, PER_VERTEX_INDEXED)
                    ? 1
                    : 0;
  return exactLists_ != 0;
}

int ShapeNode::joinable(Node& node) {
  if (type != node.type || used != 0 || node.used != 0) return 0;
  auto& other = static_cast<ShapeNode&>(node);
  const auto isInBothOrNone = [&](FieldId field) {
    return (getField(field) == nullptr) == (other.getField(field) == nullptr);
  };
  const bool hasIndex = getField(FIELD_materialIndex) != nullptr;
  const bool otherHasIndex = other.getField(FIELD_materialIndex) != nullptr;
  const bool isIndexMade = hasIndex && !otherHasIndex && willGetIndex(state, other.state);

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
  const auto isUselessIndex = [](ShapeNode& shape) {
    return shape.type == NODE_IndexedLineSet && shape.state.materialBinding == OVERALL &&
           shape.getField(FIELD_materialIndex) != nullptr;
  };
  if ((joinmode & JOIN_MATERIALS) != 0 && (isUselessIndex(*this) || isUselessIndex(other)))
    return 0;
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
  exactLists_ = -1;
}

}  // namespace varimesh
