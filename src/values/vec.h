// A vector of three single-precision numbers.
#pragma once

#include <cmath>

namespace varimesh {

struct Vec {
  float x = 0;
  float y = 0;
  float z = 0;

  Vec() = default;
  Vec(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}

  // The Euclidean length, computed in double precision and narrowed once.
  [[nodiscard]] inline float getLength() const;
  // 1 when all three components are exactly zero; there is no tolerance.
  [[nodiscard]] int isNullVector() const { return x == 0.0F && y == 0.0F && z == 0.0F ? 1 : 0; }
  // Divides each component; the divisor is not tested for zero.
  Vec& operator/=(float divisor);

  friend bool operator==(const Vec&, const Vec&) = default;
};

inline Vec operator+(const Vec& a, const Vec& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec operator-(const Vec& a, const Vec& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }

// The dot product in double precision.
inline double dot(const Vec& a, const Vec& b) {
  return double{a.x} * b.x + double{a.y} * b.y + double{a.z} * b.z;
}

inline float Vec::getLength() const { return static_cast<float>(std::sqrt(dot(*this, *this))); }

}  // namespace varimesh
