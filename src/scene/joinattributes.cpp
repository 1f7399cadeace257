// Joining: comparing and merging attribute nodes.
#include <algorithm>
#include <span>

#include "scene/attributenodes.h"
#include "scene/bindingnodes.h"
#include "scene/joinshape.h"
#include "values/hash.h"

namespace varimesh {
namespace {

constexpr std::span allFields(materialFields);
constexpr auto colorFields = allFields.first(materialColorCount);
constexpr auto numberFields = allFields.subspan(materialColorCount);

bool canMeet(const Node& a, const Node& b) {
  return a.type == b.type && a.used == 0 && b.used == 0;
}

template <class V>
int countList(Node& node, int field) {
  const auto* list = node.getValue<V>(field);
  return list != nullptr ? static_cast<int>(list->values.size()) : 0;
}

// Puts the points or vectors of `from` in front of those of `to`. A node without any has none to
// give, and takes what it gets.
template <class V>
void prependList(Node& from, Node& to, int field) {
  auto* values = from.getValue<V>(field);
  if (values == nullptr) return;
  auto* list = to.getValue<V>(field);
  if (list == nullptr) {
    std::erase_if(to.fields, [&](const Field& f) { return f.number == field; });
    list = static_cast<V*>(
        to.fields.emplace(to.fields.begin(), field, std::make_unique<V>())->value.get());
  }
  Node::prepend(values->values, list->values);
}

// Mixes all values of a list into a hash.
std::uint64_t hashNumber(float number) { return mixHash(0, number); }
std::uint64_t hashNumber(const Vec& v) { return mixHash(mixHash(mixHash(0, v.x), v.y), v.z); }

template <class V>
std::uint64_t mixList(std::uint64_t hash, Node& node, int field) {
  const auto* list = node.getValue<V>(field);
  if (list == nullptr) return mixHash(hash, std::uint64_t{0});
  for (const auto& value : list->values) hash = mixHash(hash, hashNumber(value));
  return mixHash(hash, std::uint64_t{list->values.size()});
}

}  // namespace

std::uint64_t AttributeNode::getJoinSignature() {
  return used != 0 ? 0 : static_cast<std::uint64_t>(type) + 1;
}

std::uint64_t AttributeNode::getContentHash() {
  if (contentHash_ == 0) contentHash_ = hashContent() | 1U;
  return contentHash_;
}

int CoordNode::joinable(Node& other) {
  if (!canMeet(*this, other)) return 0;
  if (!compare3DField(getField(FIELD_point), other.getField(FIELD_point))) joinmode |= JOIN_COORDS;
  return 1;
}

void CoordNode::makeJoin(Node& other) {
  if ((joinmode & JOIN_COORDS) == 0) return;
  prependList<FVec3f>(*this, other, FIELD_point);
  static_cast<CoordNode&>(other).count += count;
}

int CoordNode::countValues() { return countList<FVec3f>(*this, FIELD_point); }

int NormalNode::joinable(Node& other) {
  if (!canMeet(*this, other)) return 0;
  if (!compare3DField(getField(FIELD_vector), other.getField(FIELD_vector))) {
    joinmode |= JOIN_NORMALS;
  }
  return 1;
}

void NormalNode::makeJoin(Node& other) {
  if ((joinmode & JOIN_NORMALS) == 0) return;
  prependList<FVec3f>(*this, other, FIELD_vector);
  static_cast<NormalNode&>(other).count += count;
}

int NormalNode::countValues() { return countList<FVec3f>(*this, FIELD_vector); }

std::uint64_t TextureCoordNode::getJoinSignature() {
  const std::uint64_t signature = AttributeNode::getJoinSignature();
  if (signature == 0) return 0;
  return signature ^ (reinterpret_cast<std::uintptr_t>(savedState.textureNode) << 8U);
}

int TextureCoordNode::joinable(Node& other) {
  if (!canMeet(*this, other)) return 0;
  if (savedState.textureNode != static_cast<TextureCoordNode&>(other).savedState.textureNode) {
    return 0;
  }
  const auto* mine = getValue<FVec2f>(FIELD_point);
  const auto* others = other.getValue<FVec2f>(FIELD_point);
  const bool isEqual =
      mine == nullptr || others == nullptr ? mine == others : mine->values == others->values;
  if (!isEqual) joinmode |= JOIN_TEXTURECOORDS;
  return 1;
}

void TextureCoordNode::makeJoin(Node& other) {
  if ((joinmode & JOIN_TEXTURECOORDS) == 0) return;
  prependList<FVec2f>(*this, other, FIELD_point);
  static_cast<TextureCoordNode&>(other).count += count;
}

int TextureCoordNode::countValues() { return countList<FVec2f>(*this, FIELD_point); }

int MaterialNode::joinable(Node& other) {
  if (!canMeet(*this, other)) return 0;
  const auto differs = [&](int field, auto compare) {
    return !compare(getField(field), other.getField(field));
  };
  if (std::any_of(colorFields.begin(), colorFields.end(),
                  [&](int field) { return differs(field, compare3DField); }) ||
      std::any_of(numberFields.begin(), numberFields.end(),
                  [&](int field) { return differs(field, compareField); })) {
    joinmode |= JOIN_MATERIALS;
  }
  return 1;
}

void MaterialNode::makeJoin(Node& other) {
  if ((joinmode & JOIN_MATERIALS) == 0) return;
  const auto size = static_cast<std::size_t>(countValues());
  for (const int field : colorFields) makeJoinField3D(other, field, size);
  for (const int field : numberFields) makeJoinField(other, field, size);
  static_cast<MaterialNode&>(other).count += count;
}

std::uint64_t NormalNode::hashContent() { return mixList<FVec3f>(1, *this, FIELD_vector); }

std::uint64_t MaterialNode::hashContent() {
  std::uint64_t hash = 1;
  for (const int field : colorFields) hash = mixList<FVec3f>(hash, *this, field);
  for (const int field : numberFields) hash = mixList<FFloat>(hash, *this, field);
  return hash;
}

// A node without any values still stands for one material, the default.
int MaterialNode::countValues() {
  int longest = 1;
  for (const int field : colorFields) longest = std::max(longest, countList<FVec3f>(*this, field));
  for (const int field : numberFields) longest = std::max(longest, countList<FFloat>(*this, field));
  return longest;
}

void MaterialNode::createMaterialIndex(Node& shape, int materialNumber) {
  auto index = std::make_unique<FLong>();
  if (const auto* list = shape.getValue<FLong>(FIELD_coordIndex)) {
    const auto& positions = list->values;
    auto faces = std::count(positions.begin(), positions.end(), -1);
    if (positions.back() != -1) ++faces;
    index->values.assign(static_cast<std::size_t>(faces), materialNumber);
  }
  std::erase_if(shape.fields, [](const Field& f) { return f.number == FIELD_materialIndex; });
  shape.fields.emplace(shape.fields.begin(), FIELD_materialIndex, std::move(index));
  shape.asJoinShape()->setMaterialBinding(PER_FACE_INDEXED);
}

int BindingNode::joinable(Node& other) {
  return canMeet(*this, other) && compareField(getField(FIELD_value), other.getField(FIELD_value))
             ? 1
             : 0;
}

std::uint64_t BindingNode::getJoinSignature() {
  if (used != 0) return 0;
  const auto* binding = getValue<FEnum>(FIELD_value);
  const auto number = binding != nullptr ? static_cast<unsigned>(binding->value) + 1U : 0U;
  return (std::uint64_t{number} << 8U) + static_cast<std::uint64_t>(type) + 1;
}

}  // namespace varimesh
