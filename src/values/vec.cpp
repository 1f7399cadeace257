#include "values/vec.h"

namespace varimesh {

Vec& Vec::operator/=(float divisor) {
  x /= divisor;
  y /= divisor;
  z /= divisor;
  return *this;
}

}  // namespace varimesh
