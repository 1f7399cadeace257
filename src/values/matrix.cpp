#include "values/matrix.h"

namespace varimesh {

Matrix operator*(const Matrix& a, const Matrix& b) {
  Matrix product;
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      float sum = 0;
      for (int k = 0; k < 4; ++k) {
        sum = static_cast<float>(double{sum} + double{a.at(i, k)} * b.at(k, j));
      }
      product.entries[static_cast<unsigned>(4 * i + j)] = sum;
    }
  }
  return product;
}

Vec mult3x3(const Vec& v, const Matrix& m) {
  const auto column = [&](int j) {
    return static_cast<float>(double{v.x} * m.at(0, j) + double{v.y} * m.at(1, j) +
                              double{v.z} * m.at(2, j));
  };
  return {column(0), column(1), column(2)};
}

}  // namespace varimesh
