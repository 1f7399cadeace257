#include "scene/state.h"

#include <cmath>

namespace varimesh {

float State::getMaxScale() const {
  const auto corner = [&](float x, float y, float z) { return mult3x3(Vec(x, y, z), matrix); };
  const Vec diagonals[] = {corner(1, 1, 1) - corner(0, 0, 0), corner(1, 0, 1) - corner(0, 1, 0),
                           corner(1, 1, 0) - corner(0, 0, 1), corner(0, 1, 1) - corner(1, 0, 0)};
  float longest = 0;
  for (const Vec& diagonal : diagonals) {
    const float length = diagonal.getLength();
    if (length > longest) longest = length;
  }
  return static_cast<float>(longest / std::sqrt(3.0));
}

}  // namespace varimesh
