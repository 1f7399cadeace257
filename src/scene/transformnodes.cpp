#include "scene/transformnodes.h"

#include <cmath>

#include "scene/state.h"

namespace varimesh {
namespace {

Matrix makeTranslation(const Vec& v) {
  return Matrix({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, v.x, v.y, v.z, 1});
}

Matrix makeScale(const Vec& v) {
  return Matrix({v.x, 0, 0, 0, 0, v.y, 0, 0, 0, 0, v.z, 0, 0, 0, 0, 1});
}

// About a unit axis.
Matrix makeRotation(const Vec& axis, float angle) {
  const double c = std::cos(double{angle});
  const double s = std::sin(double{angle});
  const double t = 1 - c;
  const double x = axis.x;
  const double y = axis.y;
  const double z = axis.z;
  const auto entry = [](double value) { return static_cast<float>(value); };
  return Matrix({entry(t * x * x + c), entry(t * x * y + s * z), entry(t * x * z - s * y), 0,
                 entry(t * x * y - s * z), entry(t * y * y + c), entry(t * y * z + s * x), 0,
                 entry(t * x * z + s * y), entry(t * y * z - s * x), entry(t * z * z + c), 0, 0, 0,
                 0, 1});
}

const Vec* getVec(Node& node, int field) {
  const auto* value = node.getValue<FVec3f>(field);
  return value != nullptr ? &value->values.front() : nullptr;
}

// A rotation that turns at all: field absent or angle 0 give null. An axis without direction is an
// error of the node, with `what` naming the field.
struct Turn {
  Vec axis;  // of length 1
  float angle = 0;
};

bool getTurn(Node& node, int field, const char* what, Turn& turn) {
  const auto* value = node.getValue<FRotation>(field);
  if (value == nullptr || value->value.angle == 0) return false;
  turn = {value->value.axis, value->value.angle};
  const float length = turn.axis.getLength();
  if (length == 0) node.error("arbitrary axis of %s is null-vector\n", what);
  turn.axis /= length;
  return true;
}

void rotate(Node& node, State& state) {
  if (Turn turn; getTurn(node, FIELD_rotation, "rotation", turn)) {
    state.transform(makeRotation(turn.axis, turn.angle));
  }
}

}  // namespace

void TranslationNode::setupDepends(State& state) {
  if (const Vec* v = getVec(*this, FIELD_translation)) state.transform(makeTranslation(*v));
}

void ScaleNode::setupDepends(State& state) {
  if (const Vec* v = getVec(*this, FIELD_scaleFactor)) state.transform(makeScale(*v));
}

void RotationNode::setupDepends(State& state) { rotate(*this, state); }

void MatrixTransformNode::setupDepends(State& state) {
  if (const auto* matrix = getValue<FMatrix>(FIELD_matrix)) state.transform(matrix->value);
}

// Each step puts its matrix in front, so what is written first applies to the children last.
void TransformNode::setupDepends(State& state) {
  if (const Vec* v = getVec(*this, FIELD_translation)) state.transform(makeTranslation(*v));
  const Vec* center = getVec(*this, FIELD_center);
  if (center != nullptr) state.transform(makeTranslation(*center));
  rotate(*this, state);
  if (const Vec* scale = getVec(*this, FIELD_scaleFactor);
      scale != nullptr && *scale != Vec(1, 1, 1)) {
    Turn turn;
    const bool isTurned = getTurn(*this, FIELD_scaleOrientation, "scaleorientation", turn);
    if (isTurned) state.transform(makeRotation(turn.axis, turn.angle));
    state.transform(makeScale(*scale));
    if (isTurned) state.transform(makeRotation(turn.axis, -turn.angle));
  }
  if (center != nullptr) state.transform(makeTranslation(Vec() - *center));
}

}  // namespace varimesh
