#include "shapes/simpleshapes.h"

#include <cstdint>
#include <limits>

#include "scene/attributenodes.h"

namespace varimesh {
namespace {

int getInteger(Node& node, int field, int absent) {
  const auto* value = node.getValue<FLong>(field);
  return value != nullptr ? value->values.front() : absent;
}

// Keeps the materials of a shape of that many parts in place, if the binding addresses them.
void keepMaterials(Node& shape, const State& state, bool isAddressed, int parts) {
  if (isAddressed) state.materialNode->materialSet->raiseUncompressed(parts);
  state.materialNode->fixedUser = &shape;
}

bool isPerPart(int binding) { return binding == PER_PART || binding == PER_PART_INDEXED; }
bool isPerFace(int binding) { return binding == PER_FACE || binding == PER_FACE_INDEXED; }

}  // namespace

void PointNode::setupDepends(State& state) {
  constexpr int all = -1;
  constexpr std::int64_t last = std::numeric_limits<int>::max();
  const int start = getInteger(*this, FIELD_startIndex, 0);
  const int points = getInteger(*this, FIELD_numPoints, all);
  if (points == 0 || points < all) return;
  const std::int64_t sum = std::int64_t{start} + points;
  const int end = static_cast<int>(points == all || sum > last ? last : sum);

  state.coordNode->coordSet->raiseUncompressed(end);
  if (state.materialBinding > OVERALL) state.materialNode->materialSet->raiseUncompressed(end);
  if (state.normalBinding != OVERALL) state.normalNode->normalSet->raiseUncompressed(end);
  state.textureCoordNode->textureCoordSet->raiseUncompressed(end);
  state.coordNode->fixedUser = this;
  state.materialNode->fixedUser = this;
  state.normalNode->fixedUser = this;
  state.textureCoordNode->fixedUser = this;
}

void ConeNode::setupDepends(State& state) {
  keepMaterials(*this, state, isPerPart(state.materialBinding), 2);
}

void CubeNode::setupDepends(State& state) {
  keepMaterials(*this, state, isPerPart(state.materialBinding) || isPerFace(state.materialBinding),
                6);
}

void CylinderNode::setupDepends(State& state) {
  keepMaterials(*this, state, isPerPart(state.materialBinding), 3);
}

void SphereNode::setupDepends(State& state) { keepMaterials(*this, state, false, 0); }

}  // namespace varimesh
