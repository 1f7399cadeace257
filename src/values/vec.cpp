#include "values/vec.h"

#include <cmath>

namespace varimesh {

float Vec::getLength() const { return static_cast<float>(std::sqrt(dot(*this, *this))); }

int Vec::isNullVector() const { return x == 0.0F && y == 0.0F && z == 0.0F ? 1 : 0; }

Vec& Vec::operator/=(float divisor) {
  x /= divisor;
  y /= divisor;
  z /= divisor;
  return *this;
}

}  // namespace varimesh
