// The cameras, as far as they decide about the viewing angle that levels are made for.
#pragma once

#include "scene/node.h"

namespace varimesh {

class PerspectiveCameraNode : public Node {
 public:
  using Node::Node;
  // Becomes the camera if it is the first; warns if it is another with a different angle.
  void setupCamera(Node*& camera) override;
};

class OrthographicCameraNode : public Node {
 public:
  using Node::Node;
  // Never becomes the camera.
  void setupCamera(Node*& camera) override;
};

}  // namespace varimesh
