// An axis-aligned box.
#pragma once

#include "values/vec.h"

namespace varimesh {

// The middle of two numbers, without overflow, narrowed once.
inline float middle(float low, float high) {
  return static_cast<float>((double{low} + double{high}) / 2.0);
}

struct Bounds {
  float minX = 0, maxX = 0;
  float minY = 0, maxY = 0;
  float minZ = 0, maxZ = 0;

  Bounds() = default;
  // All minima first, then all maxima: not the order of the members.
  Bounds(float lowX, float lowY, float lowZ, float highX, float highY, float highZ) {
    setTo(lowX, lowY, lowZ, highX, highY, highZ);
  }

  void setTo(float lowX, float lowY, float lowZ, float highX, float highY, float highZ);
  // Widens the box to contain the point. Both sides are tested on every axis, so that a box that
  // starts inverted takes its first point as minimum and as maximum.
  void enlargeIfOutside(float x, float y, float z) {
    enlarge(minX, maxX, x);
    enlarge(minY, maxY, y);
    enlarge(minZ, maxZ, z);
  }
  // Widens the shorter axes about their centres until the box is a cube. The box only grows.
  void makeCubic();
  // The longest of the three edges.
  [[nodiscard]] float getMaxElongation() const;
  // The point in the middle.
  [[nodiscard]] Vec getMiddle() const;
  // The length of the space diagonal.
  [[nodiscard]] float getDiagonal() const;

 private:
  static void enlarge(float& low, float& high, float value) {
    if (value < low) low = value;
    if (value > high) high = value;
  }
};

}  // namespace varimesh
