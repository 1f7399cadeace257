#include "meshes.h"

#include <cmath>
#include <cstdio>

namespace varimesh::meshes {
namespace {

constexpr double pi = 3.14159265358979323846;

Point toPoint(double x, double y, double z) {
  return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
}

// The polygons of n x n cells between (n + 1) x (n + 1) points, row by row.
std::vector<std::vector<int>> makeCells(int n, bool quads) {
  std::vector<std::vector<int>> cells;
  for (int y = 0; y < n; ++y) {
    for (int x = 0; x < n; ++x) {
      const int a = y * (n + 1) + x;
      const int c = a + n + 2;
      if (quads) {
        cells.push_back({a, a + 1, c, c - 1});
      } else {
        cells.push_back({a, a + 1, c});
        cells.push_back({a, c, c - 1});
      }
    }
  }
  return cells;
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

Mesh terrain(int n, unsigned seed) {
  Random random(seed);
  struct Hill {
    double x, y, height, width;
  };
  std::vector<Hill> hills;
  for (int i = 0; i < 8; ++i) {
    hills.push_back({uniform(random, 0, n), uniform(random, 0, n), uniform(random, -0.2, 0.2) * n,
                     uniform(random, 0.05, 0.3) * n});
  }
  Mesh mesh;
  for (int y = 0; y <= n; ++y) {
    for (int x = 0; x <= n; ++x) {
      double z = 0;
      for (const Hill& h : hills) {
        z +=
            h.height * std::exp(-(std::pow(x - h.x, 2) + std::pow(y - h.y, 2)) / h.width / h.width);
      }
      mesh.points.push_back(toPoint(x, y, z));
    }
  }
  mesh.polygons = makeCells(n, false);
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
  mesh.polygons = makeCells(n, true);
  return mesh;
}

Mesh fan(int triangles) {
  Mesh mesh;
  mesh.points.push_back({0, 0, 0.5F});
  for (int i = 0; i < triangles; ++i) {
    const double a = 2 * pi * i / triangles;
    mesh.points.push_back(toPoint(std::cos(a), std::sin(a), 0));
    mesh.polygons.push_back({0, i + 1, (i + 1) % triangles + 1});
  }
  return mesh;
}

Mesh soup(int points, int polygons, unsigned seed) {
  Random random(seed);
  Mesh mesh;
  for (int i = 0; i < points; ++i) {
    const double x = uniform(random, -1, 1);
    const double y = uniform(random, -1, 1);
    mesh.points.push_back(toPoint(x, y, uniform(random, -1, 1)));
  }
  for (int i = 0; i < polygons; ++i) {
    std::vector<int> polygon(static_cast<std::size_t>(2 + pick(random, 3)));
    for (int& corner : polygon) corner = pick(random, points);
    mesh.polygons.push_back(polygon);
  }
  return mesh;
}

std::string toScene(const Mesh& mesh, bool lines) {
  std::string text = "#VRML V1.0 ascii\nCoordinate3 { point [\n";
  for (const Point& p : mesh.points) {
    char line[128];
    std::snprintf(line, sizeof line, "%.9g %.9g %.9g,\n", double{p[0]}, double{p[1]}, double{p[2]});
    text += line;
  }
  text += lines ? "] }\nIndexedLineSet { coordIndex [\n" : "] }\nIndexedFaceSet { coordIndex [\n";
  for (const auto& polygon : mesh.polygons) {
    for (const int corner : polygon) text += std::to_string(corner) + ",";
    text += "-1,\n";
  }
  return text + "] }\n";
}

}  // namespace varimesh::meshes
