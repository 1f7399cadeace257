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
  const auto* ordering = getValue<FEnum>(FIELD_vertexOrdering);
  const auto* faceType = getValue<FEnum>(FIELD_faceType);
  state.vertexOrdering = ordering != nullptr ? ordering->value : 0;
  state.faceType = faceType != nullptr ? faceType->value : 1;
  state.shapeHintsNode = this;
}

}  // namespace varimesh
