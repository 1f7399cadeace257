// Small meshes for tests. The same arguments always give the same mesh.
#pragma once

#include <array>
#include <random>
#include <vector>

namespace varimesh::meshes {

using Point = std::array<float, 3>;
using Random = std::mt19937;

struct Mesh {
  std::vector<Point> points;
  std::vector<std::vector<int>> polygons;
};

// Like std::uniform_..._distribution, but the same with every standard library.
double uniform(Random& random, double low, double high);
int pick(Random& random, int n);  // 0 to n - 1

// Triangles; quadrangles between the rings but at the poles with `quads`.
Mesh sphere(int rings, int sectors, bool quads = false);
// A square of n x n quadrangles. Its points are moved at random by at most `noise` cells on each
// axis: 0 gives flat squares, 0.02 nearly flat ones, 0.5 bent and twisted ones.
Mesh noisyGrid(int n, double noise, unsigned seed);
}  // namespace varimesh::meshes
