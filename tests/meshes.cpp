#include "meshes.h"

#include <cmath>

namespace varimesh::meshes {
namespace {

constexpr double pi = 3.14159265358979323846;

Point toPoint(double x, double y, double z) {
  return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
}

}  // namespace

double uniform(Random& random, double low, double high) {
  return low + (high - low) * static_cast<double>(random()) / 4294967296.0;
}

int pick(Random& random, int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }

Mesh sphere(int rings, int sectors, bool quads) {
  Mesh mesh;
  mesh.points.push_back({0, 0, 1});
  for (int r = 1; r < rings; ++r) {
    for (int s = 0; s < sectors; ++s) {
      const double theta = pi * r / rings;
      const double phi = 2 * pi * s / sectors;
      mesh.points.push_back(toPoint(std::sin(theta) * std::cos(phi),
                                    std::sin(theta) * std::sin(phi), std::cos(theta)));
    }
  }
  mesh.points.push_back({0, 0, -1});
  const int south = static_cast<int>(mesh.points.size()) - 1;
  const auto at = [&](int r, int s) {
    return r == 0 ? 0 : r == rings ? south : 1 + (r - 1) * sectors + s % sectors;
  };
  for (int r = 0; r < rings; ++r) {
    for (int s = 0; s < sectors; ++s) {
      const std::vector<int> q = {at(r, s), at(r + 1, s), at(r + 1, s + 1), at(r, s + 1)};
      if (quads && r > 0 && r + 1 < rings) {
        mesh.polygons.push_back(q);
        continue;
      }
      if (r + 1 < rings) mesh.polygons.push_back({q[0], q[1], q[2]});
      if (r > 0) mesh.polygons.push_back({q[0], q[2], q[3]});
    }
  }
  return mesh;
}

Mesh noisyGrid(int n, double noise, unsigned seed) {
  Random random(seed);
  Mesh mesh;
  for (int y = 0; y <= n; ++y) {
    for (int x = 0; x <= n; ++x) {
      const double dx = uniform(random, -noise, noise);
      const double dy = uniform(random, -noise, noise);
      mesh.points.push_back(toPoint(x + dx, y + dy, uniform(random, -noise, noise)));
    }
  }
  for (int y = 0; y < n; ++y) {
    for (int x = 0; x < n; ++x) {
      const int a = y * (n + 1) + x;
      const int c = a + n + 2;
      mesh.polygons.push_back({a, a + 1, c, c - 1});
    }
  }
  return mesh;
}

}  // namespace varimesh::meshes
