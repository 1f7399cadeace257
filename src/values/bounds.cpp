#include "values/bounds.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace varimesh {
namespace {

// Narrows a bound of the cube; the largest finite single is the end of the world.
float narrow(double value) {
  constexpr double largest = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(value, -largest, largest));
}

void widen(float& low, float& high, float centre, float half) {
  const float top = narrow(double{centre} + half);
  const float bottom = narrow(double{centre} - half);
  if (top > high) high = top;
  if (bottom < low) low = bottom;
}

}  // namespace

void Bounds::setTo(float lowX, float lowY, float lowZ, float highX, float highY, float highZ) {
  minX = lowX;
  maxX = highX;
  minY = lowY;
  maxY = highY;
  minZ = lowZ;
  maxZ = highZ;
}

void Bounds::makeCubic() {
  const Vec centre = getMiddle();
  const Vec half = Vec(maxX, maxY, maxZ) - centre;
  const float edge = std::max({half.x, half.y, half.z});
  widen(minX, maxX, centre.x, edge);
  widen(minY, maxY, centre.y, edge);
  widen(minZ, maxZ, centre.z, edge);
}

float Bounds::getMaxElongation() const {
  return narrow(std::max({double{maxX} - minX, double{maxY} - minY, double{maxZ} - minZ}));
}

Vec Bounds::getMiddle() const {
  return {middle(minX, maxX), middle(minY, maxY), middle(minZ, maxZ)};
}

float Bounds::getDiagonal() const {
  const double x = double{maxX} - minX;
  const double y = double{maxY} - minY;
  const double z = double{maxZ} - minZ;
  return narrow(std::sqrt(x * x + y * y + z * z));
}

}  // namespace varimesh
