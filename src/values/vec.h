// A vector of three single-precision numbers.
#pragma once

namespace varimesh {

struct Vec {
  float x = 0;
  float y = 0;
  float z = 0;

  Vec() = default;
  Vec(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}

  // The Euclidean length, computed in double precision and narrowed once.
  [[nodiscard]] float getLength() const;
  // 1 when all three components are exactly zero; there is no tolerance.
  [[nodiscard]] int isNullVector() const;
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

}  // namespace varimesh
