#include "scene/bindingnodes.h"

namespace varimesh {

int BindingNode::getBinding() {
  const auto* binding = getValue<FEnum>(FIELD_value);
  if (binding == nullptr) return DEFAULT;
  if (binding->value >= DEFAULT && binding->value <= PER_VERTEX_INDEXED) return binding->value;
  warning("unknown binding >%d< (using DEFAULT)\n", binding->value);
  return DEFAULT;
}

void MaterialBindingNode::printTree(Output& out, int indent) {
  Node::printTree(out, indent);
  out.write(" (");
  if (!fields.empty() && fields.front().size() > 0) fields.front().value->print(out, 0);
  out.put(')');
}

void ShapeHintsNode::setupDepends(State& state) {
  const auto getWord = [&](FieldId field) {
    const auto* word = getValue<FEnum>(field);
    return word != nullptr ? std::optional(word->value) : std::nullopt;
  };
  hints_ = {getWord(FIELD_vertexOrdering), getWord(FIELD_shapeType), getWord(FIELD_faceType), {}};
  if (const auto* angle = getValue<FFloat>(FIELD_creaseAngle)) {
    hints_.creaseAngle = angle->values.front();
  }
  state.vertexOrdering = hints_.vertexOrdering.value_or(0);
  state.faceType = hints_.faceType.value_or(1);
  state.shapeHintsNode = this;
}

}  // namespace varimesh
