#include "scene/cameranodes.h"

namespace varimesh {
namespace {

float getHeightAngle(Node& camera) {
  constexpr float defaultHeightAngle = 0.785398F;
  const auto* angle = camera.getValue<FFloat>(FIELD_heightAngle);
  return angle != nullptr ? angle->values.front() : defaultHeightAngle;
}

}  // namespace

void PerspectiveCameraNode::setupCamera(Node*& camera) {
  if (camera == nullptr) {
    camera = this;
  } else if (getHeightAngle(*camera) != getHeightAngle(*this)) {
    warning("multiple cameras with different heightAngles (using first)\n");
  }
}

void OrthographicCameraNode::setupCamera(Node*&) {
  if (nolods == 0) warning("lods makes no sense with this type of camera\n");
}

}  // namespace varimesh
