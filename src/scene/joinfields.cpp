// Joining: the operations on fields.
#include <iterator>
#include <memory>

#include "scene/node.h"

namespace varimesh {
namespace {

constexpr float shininessDefault = 0.2F;

Vec getDefaultColor(int field) {
  switch (field) {
    case FIELD_ambientColor: return {0.2F, 0.2F, 0.2F};
    case FIELD_diffuseColor: return {0.8F, 0.8F, 0.8F};
    default: return {};
  }
}

// Both fields absent, or both with values: then `equal` decides.
template <class Equal>
bool compare(const Field* a, const Field* b, Equal equal) {
  if (a == nullptr || b == nullptr) return a == b;
  return a->size() > 0 && a->size() == b->size() && equal(*a->value, *b->value);
}

template <class T>
void fillUp(std::vector<T>& values, std::size_t size) {
  if (values.size() < size) values.resize(size, T(values.back()));
}

// The list of a field, made with one default value where it is missing.
template <class V, class T>
V& require(Node& node, int field, const T& defaultValue) {
  if (auto* list = node.getValue<V>(field)) return *list;
  auto made = std::make_unique<V>();
  made->values.push_back(defaultValue);
  V& list = *made;
  std::erase_if(node.fields, [&](const Field& f) { return f.number == field; });
  node.fields.emplace(node.fields.begin(), field, std::move(made));
  return list;
}

}  // namespace

bool Node::compareField(const Field* a, const Field* b) {
  return compare(a, b, [](const Value& x, const Value& y) {
    if (const auto* floats = dynamic_cast<const FFloat*>(&x)) {
      return floats->values == static_cast<const FFloat&>(y).values;
    }
    return static_cast<const FEnum&>(x).value == static_cast<const FEnum&>(y).value;
  });
}

bool Node::compare3DField(const Field* a, const Field* b) {
  return compare(a, b, [](const Value& x, const Value& y) {
    return static_cast<const FVec3f&>(x).values == static_cast<const FVec3f&>(y).values;
  });
}

void Node::joinFields(Field* from, Field* to) {
  if (from == nullptr || to == nullptr || from->size() == 0) return;
  if (to->value == nullptr) to->value = std::make_unique<FLong>();
  prepend(static_cast<FLong&>(*from->value).values, static_cast<FLong&>(*to->value).values);
}

void Node::makeJoinField(Node& other, int fieldNumber, std::size_t size) {
  const float value = fieldNumber == FIELD_shininess ? shininessDefault : 0.0F;
  auto& values = require<FFloat>(*this, fieldNumber, value).values;
  fillUp(values, size);
  prepend(values, require<FFloat>(other, fieldNumber, value).values);
}

void Node::makeJoinField3D(Node& other, int fieldNumber, std::size_t size) {
  const Vec value = getDefaultColor(fieldNumber);
  auto& values = require<FVec3f>(*this, fieldNumber, value).values;
  fillUp(values, size);
  prepend(values, require<FVec3f>(other, fieldNumber, value).values);
}

int Node::joinable(Node&) { return 0; }

void Node::makeJoin(Node&) {}

std::uint64_t Node::getJoinSignature() { return 0; }

}  // namespace varimesh
