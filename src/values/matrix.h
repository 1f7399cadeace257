// A 4x4 transformation for row vectors: a point transformed by A and then by B is v * (A * B).
#pragma once

#include <array>

#include "values/vec.h"

namespace varimesh {

struct Matrix {
  // Row by row: the element in row i and column j is entry 4 * i + j.
  std::array<float, 16> entries{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

  Matrix() = default;  // the identity
  explicit Matrix(const std::array<float, 16>& rows) : entries(rows) {}

  [[nodiscard]] float at(int row, int column) const {
    return entries[static_cast<unsigned>(4 * row + column)];
  }
};

// The product A * B; each partial sum is rounded to single precision.
Matrix operator*(const Matrix& a, const Matrix& b);

// The row vector v times the upper-left 3x3 block of m; the translation is ignored.
Vec mult3x3(const Vec& v, const Matrix& m);

}  // namespace varimesh
