// What joining needs to know of a shape. Shapes, which stand above the scene graph, implement it.
#pragma once

#include "scene/state.h"

namespace varimesh {

class JoinShape {
 public:
  // The state in which the shape was passed.
  [[nodiscard]] virtual const State& getCapturedState() const = 0;
  // Sets the material binding, captured and as written.
  virtual void setMaterialBinding(int binding) = 0;
  // Brings material indices into the range of the captured node, whose `count` has been noted.
  virtual void wrapMaterialIndex() = 0;

 protected:
  ~JoinShape() = default;
};

}  // namespace varimesh
