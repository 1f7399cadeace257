#include "scenes.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>
#include <utility>
#include <vector>

#include "values/output.h"

namespace varimesh {
namespace {

constexpr double pi = std::numbers::pi;

// The standard distributions differ between libraries; these do not.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t next() {
    std::uint64_t z = state_ += 0x9E3779B97F4A7C15U;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
    return z ^ (z >> 31);
  }
  // At least 0, below 1.
  double unit() { return static_cast<double>(next() >> 11) / 9007199254740992.0; }
  double between(double low, double high) { return low + (high - low) * unit(); }
  int below(int n) { return static_cast<int>(next() % static_cast<std::uint64_t>(n)); }

  template <class T>
  void shuffle(std::span<T> list) {
    for (std::size_t i = list.size(); i > 1; --i) std::swap(list[i - 1], list[next() % i]);
  }

 private:
  std::uint64_t state_;
};

struct Point {
  double x = 0, y = 0, z = 0;
};

using Triangle = std::array<int, 3>;

struct Mesh {
  std::vector<Point> points;
  std::vector<Triangle> triangles;
};

int roundToInt(double value) { return static_cast<int>(std::lround(value)); }

// ---------------------------------------------------------------------------------------------
// Text

// What scenes are made of, one line for each element of a list.
class SceneText {
 public:
  explicit SceneText(std::FILE* file) : out_(file) { write("#VRML V1.0 ascii\n"); }

  bool finish() { return out_.flush(); }

  void write(std::string_view text) { out_.write(text); }
  void writeInt(int number) { out_.writeInt(number); }
  void writeFixed(double number, int decimals) {
    char* room = out_.reserve(400);
    out_.advance(std::to_chars(room, room + 400, number, std::chars_format::fixed, decimals).ptr);
  }
  // Nine digits: every single is read back as it was.
  void writeExact(double number) {
    char* room = out_.reserve(40);
    out_.advance(std::to_chars(room, room + 40, number, std::chars_format::general, 9).ptr);
  }
  void writeFixed(const Point& p) {
    writeFixed(p.x, 6);
    write(" ");
    writeFixed(p.y, 6);
    write(" ");
    writeFixed(p.z, 6);
  }
  void writeExact(const Point& p) {
    writeExact(p.x);
    write(" ");
    writeExact(p.y);
    write(" ");
    writeExact(p.z);
  }
  void writeTriangle(const Triangle& t) {
    for (const int corner : t) {
      writeInt(corner);
      write(", ");
    }
    write("-1");
  }

  // Writes `name [ ... ]` with `count` elements, of which writeElement(i) writes one.
  template <class WriteElement>
  void writeList(std::string_view name, std::size_t count, WriteElement writeElement) {
    write("    ");
    write(name);
    write(" [\n");
    for (std::size_t i = 0; i < count; ++i) {
      write("      ");
      writeElement(i);
      write(i + 1 < count ? ",\n" : "\n");
    }
    write("    ]\n");
  }
  void writePoints(std::span<const Point> points) {
    write("  Coordinate3 {\n");
    writeList("point", points.size(), [&](std::size_t i) { writeFixed(points[i]); });
    write("  }\n");
  }
  void writeExactPoints(std::span<const Point> points) {
    write("  Coordinate3 {\n");
    writeList("point", points.size(), [&](std::size_t i) { writeExact(points[i]); });
    write("  }\n");
  }
  void writeTriangleList(std::string_view name, std::span<const Triangle> triangles) {
    writeList(name, triangles.size(), [&](std::size_t i) { writeTriangle(triangles[i]); });
  }
  void writeFaces(std::span<const Triangle> triangles) {
    write("  IndexedFaceSet {\n");
    writeTriangleList("coordIndex", triangles);
    write("  }\n");
  }
  // One polygon, or with IndexedLineSet one line, through `count` points from `first` on.
  void writePolygon(int first, int count) {
    for (int i = first; i < first + count; ++i) {
      writeInt(i);
      write(", ");
    }
    write("-1");
  }

 private:
  Output out_;
};

void writeMesh(SceneText& text, const Mesh& mesh) {
  text.write("Separator {\n");
  text.write("  ShapeHints { vertexOrdering COUNTERCLOCKWISE shapeType SOLID }\n");
  text.write("  Material { diffuseColor [ 0.7 0.5 0.3 ] }\n");
  text.writePoints(mesh.points);
  text.writeFaces(mesh.triangles);
  text.write("}\n");
}

// ---------------------------------------------------------------------------------------------
// Ordinary meshes

// Rings of points between two poles; radius 10.
Mesh makeSphere(int size) {
  constexpr double radius = 10;
  const int rings = std::max(1, roundToInt(std::sqrt(size / 4.0)));
  const int columns = std::max(3, roundToInt(size / (2.0 * rings)));
  Mesh mesh;
  mesh.points.push_back({0, radius, 0});
  for (int ring = 1; ring <= rings; ++ring) {
    const double polar = pi * ring / (rings + 1);
    for (int column = 0; column < columns; ++column) {
      const double angle = 2 * pi * column / columns;
      mesh.points.push_back({radius * std::sin(polar) * std::cos(angle), radius * std::cos(polar),
                             -radius * std::sin(polar) * std::sin(angle)});
    }
  }
  mesh.points.push_back({0, -radius, 0});

  const auto at = [&](int ring, int column) { return 1 + ring * columns + column % columns; };
  const int south = static_cast<int>(mesh.points.size()) - 1;
  for (int c = 0; c < columns; ++c) mesh.triangles.push_back({0, at(0, c), at(0, c + 1)});
  for (int ring = 0; ring + 1 < rings; ++ring) {
    for (int c = 0; c < columns; ++c) {
      mesh.triangles.push_back({at(ring, c), at(ring + 1, c), at(ring, c + 1)});
      mesh.triangles.push_back({at(ring, c + 1), at(ring + 1, c), at(ring + 1, c + 1)});
    }
  }
  for (int c = 0; c < columns; ++c) {
    mesh.triangles.push_back({south, at(rings - 1, c + 1), at(rings - 1, c)});
  }
  return mesh;
}

// Hills made of a few waves, with some roughness; a regular grid seen from above.
Mesh makeTerrain(int columns, int rows, Random& random) {
  constexpr double extent = 100;
  struct Wave {
    double alongX, alongY, phase, height;
  };
  std::array<Wave, 6> waves{};
  double frequency = 1;
  for (Wave& wave : waves) {
    wave = {random.between(-frequency, frequency), random.between(-frequency, frequency),
            random.between(0, 2 * pi), 4 / frequency};
    frequency *= 1.9;
  }
  Mesh mesh;
  mesh.points.reserve(static_cast<std::size_t>(columns + 1) * static_cast<std::size_t>(rows + 1));
  for (int row = 0; row <= rows; ++row) {
    for (int column = 0; column <= columns; ++column) {
      const double u = double(column) / columns;
      const double v = double(row) / rows;
      double height = random.between(0, 0.05);
      for (const Wave& w : waves) {
        height += w.height * std::sin(2 * pi * (w.alongX * u + w.alongY * v) + w.phase);
      }
      mesh.points.push_back({extent * u, height, extent * v});
    }
  }
  const int width = columns + 1;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      const int a = row * width + column;
      mesh.triangles.push_back({a, a + width, a + 1});
      mesh.triangles.push_back({a + 1, a + width, a + width + 1});
    }
  }
  return mesh;
}

Mesh makeTerrain(int size, Random& random) {
  const int columns = std::max(1, roundToInt(std::sqrt(size / 2.0)));
  return makeTerrain(columns, std::max(1, roundToInt(size / 2.0 / columns)), random);
}

// The points on the surface of a cube of k x k x k cells, numbered layer by layer.
class CubeSurface {
 public:
  explicit CubeSurface(int k) : k_(k) {}

  [[nodiscard]] int getNumber(const std::array<int, 3>& p) const {
    const auto [x, y, z] = p;
    const int face = (k_ + 1) * (k_ + 1);
    if (z == 0) return y * (k_ + 1) + x;
    if (z == k_) return face + 4 * k_ * (k_ - 1) + y * (k_ + 1) + x;
    const int around = y == 0 ? x : x == k_ ? k_ + y : y == k_ ? 3 * k_ - x : 4 * k_ - y;
    return face + (z - 1) * 4 * k_ + around;
  }
  [[nodiscard]] int countPoints() const { return 6 * k_ * k_ + 2; }

  // Calls visit(a, b, c, d) for the corners of each square, counterclockwise from outside.
  template <class Visit>
  void forEachSquare(Visit visit) const {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      for (const bool isUpper : {false, true}) {
        for (int i = 0; i < k_; ++i) {
          for (int j = 0; j < k_; ++j) {
            const auto corner = [&](int di, int dj) {
              std::array<int, 3> p{};
              p[axis] = isUpper ? k_ : 0;
              p[(axis + (isUpper ? 1 : 2)) % 3] = i + di;
              p[(axis + (isUpper ? 2 : 1)) % 3] = j + dj;
              return p;
            };
            visit(corner(0, 0), corner(1, 0), corner(1, 1), corner(0, 1));
          }
        }
      }
    }
  }

 private:
  int k_;
};

// A bumpy body as a scanner sees one: points off the grid, noise along the surface normal, corners
// of various valences, and an order that hangs together only for a stretch at a time.
Mesh makeBody(int size, Random& random) {
  const int k = std::max(1, roundToInt(std::sqrt(size / 12.0)));
  const CubeSurface cube(k);
  struct Bump {
    Point direction;
    double phase, height;
  };
  std::array<Bump, 12> bumps{};
  double frequency = 1.5;
  for (Bump& bump : bumps) {
    const double z = random.between(-1, 1);
    const double angle = random.between(0, 2 * pi);
    const double r = std::sqrt(1 - z * z);
    bump = {{frequency * r * std::cos(angle), frequency * r * std::sin(angle), frequency * z},
            random.between(0, 2 * pi),
            2.0 / frequency};
    frequency *= 1.35;
  }
  const double step = 2.0 / k;
  const auto place = [&](const std::array<int, 3>& p) {
    std::array<double, 3> d{};
    for (std::size_t i = 0; i < 3; ++i) {
      d[i] = p[i] * step - 1;
      if (p[i] > 0 && p[i] < k) d[i] += step * random.between(-0.35, 0.35);
    }
    const double length = std::hypot(d[0], d[1], d[2]);
    const Point n{d[0] / length, d[1] / length, d[2] / length};
    double radius = 10 + 2 * step * random.between(-1, 1);
    for (const Bump& b : bumps) {
      radius += b.height *
                std::sin(b.direction.x * n.x + b.direction.y * n.y + b.direction.z * n.z + b.phase);
    }
    return Point{radius * n.x, radius * n.y, radius * n.z};
  };

  Mesh mesh;
  mesh.points.resize(static_cast<std::size_t>(cube.countPoints()));
  std::vector<bool> isPlaced(mesh.points.size());
  const auto number = [&](const std::array<int, 3>& p) {
    const auto i = static_cast<std::size_t>(cube.getNumber(p));
    if (!isPlaced[i]) {
      isPlaced[i] = true;
      mesh.points[i] = place(p);
    }
    return static_cast<int>(i);
  };
  cube.forEachSquare([&](const auto& pa, const auto& pb, const auto& pc, const auto& pd) {
    const int a = number(pa);
    const int b = number(pb);
    const int c = number(pc);
    const int d = number(pd);
    if (random.below(2) == 0) {
      mesh.triangles.push_back({a, b, c});
      mesh.triangles.push_back({a, c, d});
    } else {
      mesh.triangles.push_back({a, b, d});
      mesh.triangles.push_back({b, c, d});
    }
  });

  // Shuffles stretches of a list, and what is near each other within a stretch.
  const auto shufflePatches = [&](std::size_t count) {
    constexpr std::size_t stretch = 512;
    constexpr std::size_t near = 16;
    std::vector<std::size_t> starts;
    for (std::size_t i = 0; i < count; i += stretch) starts.push_back(i);
    random.shuffle(std::span(starts));
    std::vector<std::size_t> order;
    order.reserve(count);
    for (const std::size_t start : starts) {
      for (std::size_t i = start; i < std::min(count, start + stretch); ++i) order.push_back(i);
    }
    for (std::size_t i = 0; i < count; i += near) {
      random.shuffle(std::span(order).subspan(i, std::min(near, count - i)));
    }
    return order;
  };
  Mesh shuffled;
  std::vector<int> numbers(mesh.points.size());
  for (const std::size_t i : shufflePatches(mesh.points.size())) {
    numbers[i] = static_cast<int>(shuffled.points.size());
    shuffled.points.push_back(mesh.points[i]);
  }
  for (const std::size_t i : shufflePatches(mesh.triangles.size())) {
    Triangle t = mesh.triangles[i];
    for (int& corner : t) corner = numbers[static_cast<std::size_t>(corner)];
    std::rotate(t.begin(), t.begin() + random.below(3), t.end());
    shuffled.triangles.push_back(t);
  }
  return shuffled;
}

// ---------------------------------------------------------------------------------------------
// Ordinary scenes

void writeSphere(SceneText& text, int size, Random&) { writeMesh(text, makeSphere(size)); }
void writeTerrain(SceneText& text, int size, Random& random) {
  writeMesh(text, makeTerrain(size, random));
}
void writeBody(SceneText& text, int size, Random& random) {
  writeMesh(text, makeBody(size, random));
}

// Every kind of attribute on one sphere: normals per vertex in an order of their own, texture
// coordinates, and 256 materials per face of which some are equal.
void writeAttributes(SceneText& text, int size, Random& random) {
  const Mesh mesh = makeSphere(size);
  text.write("Separator {\n  ShapeHints { vertexOrdering COUNTERCLOCKWISE }\n");
  text.write("  Texture2 { image 2 2 3 0xFF0000 0x00FF00 0x0000FF 0xFFFFFF }\n");

  constexpr int materialCount = 256;
  std::vector<Point> colors;
  for (int i = 0; i < materialCount; ++i) {
    if (i > 0 && random.below(8) == 0) {
      colors.push_back(colors[static_cast<std::size_t>(random.below(i))]);
    } else {
      colors.push_back({random.unit(), random.unit(), random.unit()});
    }
  }
  text.write("  Material {\n");
  for (const auto& [field, factor] :
       {std::pair{"ambientColor", 0.2}, {"diffuseColor", 1.0}, {"specularColor", 0.5}}) {
    const double f = factor;
    text.writeList(field, colors.size(), [&](std::size_t i) {
      text.writeFixed({f * colors[i].x, f * colors[i].y, f * colors[i].z});
    });
  }
  text.write("    shininess [ 0.2 ]\n  }\n");
  text.write("  MaterialBinding { value PER_FACE_INDEXED }\n");
  text.write("  NormalBinding { value PER_VERTEX_INDEXED }\n");

  text.writePoints(mesh.points);
  std::vector<std::size_t> order(mesh.points.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  random.shuffle(std::span(order));
  std::vector<int> normalNumbers(order.size());
  for (std::size_t i = 0; i < order.size(); ++i) normalNumbers[order[i]] = static_cast<int>(i);
  text.write("  Normal {\n");
  text.writeList("vector", order.size(), [&](std::size_t i) {
    const Point& p = mesh.points[order[i]];
    text.writeFixed({p.x / 10, p.y / 10, p.z / 10});
  });
  text.write("  }\n  TextureCoordinate2 {\n");
  text.writeList("point", mesh.points.size(), [&](std::size_t i) {
    const Point& p = mesh.points[i];
    text.writeFixed(0.5 + std::atan2(p.z, p.x) / (2 * pi), 5);
    text.write(" ");
    text.writeFixed(0.5 + p.y / 20, 5);
  });
  text.write("  }\n  IndexedFaceSet {\n");
  text.writeTriangleList("coordIndex", mesh.triangles);
  text.writeList("materialIndex", mesh.triangles.size(),
                 [&](std::size_t) { text.writeInt(random.below(materialCount)); });
  text.writeList("normalIndex", mesh.triangles.size(), [&](std::size_t i) {
    Triangle t = mesh.triangles[i];
    for (int& corner : t) corner = normalNumbers[static_cast<std::size_t>(corner)];
    text.writeTriangle(t);
  });
  text.writeTriangleList("textureCoordIndex", mesh.triangles);
  text.write("  }\n}\n");
}

// Octahedra of triangles and boxes of quadrangles, each with its own points and material.
void writeShapes(SceneText& text, int size, Random& random) {
  constexpr std::array<Point, 6> octahedron = {
      {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}}};
  constexpr std::array<Point, 8> box = {{{-1, -1, -1},
                                         {-1, -1, 1},
                                         {-1, 1, -1},
                                         {-1, 1, 1},
                                         {1, -1, -1},
                                         {1, -1, 1},
                                         {1, 1, -1},
                                         {1, 1, 1}}};
  const int side = std::max(1, static_cast<int>(std::ceil(std::cbrt(size))));
  text.write("Separator {\n");
  for (int i = 0; i < size; ++i) {
    const bool isBox = i % 2 == 0;
    const double scale = random.between(0.5, 1.5);
    text.write("  Separator {\n    Translation { translation ");
    text.writeFixed({4.0 * (i % side), 4.0 * (i / side % side), 4.0 * (i / side / side)});
    text.write(" }\n    Material { diffuseColor ");
    text.writeFixed({random.unit(), random.unit(), random.unit()});
    text.write(" }\n    Coordinate3 { point [ ");
    const auto points = isBox ? std::span<const Point>(box) : std::span<const Point>(octahedron);
    for (const Point& p : points) {
      text.writeFixed({scale * p.x, scale * p.y, scale * p.z});
      text.write(", ");
    }
    text.write("] }\n    IndexedFaceSet { coordIndex [ ");
    text.write(isBox ? "0, 1, 3, 2, -1, 4, 6, 7, 5, -1, 0, 4, 5, 1, -1, 2, 3, 7, 6, -1, "
                       "0, 2, 6, 4, -1, 1, 5, 7, 3, -1"
                     : "0, 2, 4, -1, 2, 1, 4, -1, 1, 3, 4, -1, 3, 0, 4, -1, "
                       "2, 0, 5, -1, 1, 2, 5, -1, 3, 1, 5, -1, 0, 3, 5, -1");
    text.write(" ] }\n  }\n");
  }
  text.write("}\n");
}

// A terrain in patches of 100 triangles, each a shape; all use the one list of points.
void writeShared(SceneText& text, int size, Random& random) {
  constexpr int patchColumns = 10;
  constexpr int patchRows = 5;
  const int across = std::max(1, roundToInt(std::sqrt(size / 2.0)));
  const int down = std::max(1, (size + across - 1) / across);
  const int columns = across * patchColumns;
  const Mesh mesh = makeTerrain(columns, down * patchRows, random);
  text.write("Separator {\n");
  text.writePoints(mesh.points);
  std::vector<Triangle> patch;
  for (int i = 0; i < size; ++i) {
    patch.clear();
    for (int row = 0; row < patchRows; ++row) {
      const int first = 2 * ((i / across * patchRows + row) * columns + i % across * patchColumns);
      const auto begin = mesh.triangles.begin() + first;
      patch.insert(patch.end(), begin, begin + 2 * patchColumns);
    }
    text.write("  Material { diffuseColor [ ");
    text.writeFixed({random.unit(), random.unit(), random.unit()});
    text.write(" ] }\n");
    text.writeFaces(patch);
  }
  text.write("}\n");
}

// Flat polygons of 5 to 40 corners, half of them convex, in planes of all directions.
void writePolygons(SceneText& text, int size, Random& random) {
  std::vector<Point> points;
  std::vector<int> counts;
  const int side = std::max(1, static_cast<int>(std::ceil(std::cbrt(size))));
  for (int i = 0; i < size; ++i) {
    const int corners = 5 + random.below(36);
    const double turn = random.between(0, 2 * pi);
    const double tilt = random.between(-1.2, 1.2);
    for (int k = 0; k < corners; ++k) {
      const double angle = 2 * pi * (k + random.between(0, 0.5)) / corners;
      const double radius = i % 2 == 0 ? 1 : random.between(0.3, 1);
      const double u = radius * std::cos(angle);
      const double v = radius * std::sin(angle);
      points.push_back(
          {3.0 * (i % side) + u * std::cos(turn) - v * std::cos(tilt) * std::sin(turn),
           3.0 * (i / side % side) + u * std::sin(turn) + v * std::cos(tilt) * std::cos(turn),
           3.0 * (i / side / side) + v * std::sin(tilt)});
    }
    counts.push_back(corners);
  }
  text.write("Separator {\n  ShapeHints { faceType UNKNOWN_FACE_TYPE }\n");
  text.writePoints(points);
  text.write("  IndexedFaceSet {\n");
  int first = 0;
  text.writeList("coordIndex", counts.size(), [&](std::size_t i) {
    text.writePolygon(first, counts[i]);
    first += counts[i];
  });
  text.write("  }\n}\n");
}

// ---------------------------------------------------------------------------------------------
// Hostile scenes

constexpr std::string_view oneTriangle =
    "Coordinate3 { point [ 0 0 0, 1 0 0, 0 1 0 ] }\n"
    "IndexedFaceSet { coordIndex [ 0, 1, 2, -1 ] }\n";

void writeNest(SceneText& text, int size, Random&) {
  for (int i = 0; i < size; ++i) text.write("Separator {\n");
  text.write(oneTriangle);
  for (int i = 0; i < size; ++i) text.write("}\n");
}

// Each group shows the one before it twice.
void writeUseBomb(SceneText& text, int size, Random&) {
  text.write("Separator {\nDEF g0 Separator {\n");
  text.write(oneTriangle);
  text.write("}\n");
  for (int i = 1; i <= size; ++i) {
    text.write("DEF g");
    text.writeInt(i);
    text.write(" Separator {");
    for (int k = 0; k < 2; ++k) {
      text.write(" USE g");
      text.writeInt(i - 1);
    }
    text.write(" }\n");
  }
  text.write("}\n");
}

// A terrain whose faces have an entry each of an attribute node: "Normal" or "Material".
template <class WriteEntry>
void writeTerrainByFace(SceneText& text, const Mesh& mesh, const std::string& node,
                        const char* field, const char* indexField, WriteEntry writeEntry) {
  const std::size_t count = mesh.triangles.size();
  text.write("Separator {\n  " + node + "Binding { value PER_FACE_INDEXED }\n");
  text.writePoints(mesh.points);
  text.write("  " + node + " {\n");
  text.writeList(field, count, writeEntry);
  text.write("  }\n  IndexedFaceSet {\n");
  text.writeTriangleList("coordIndex", mesh.triangles);
  text.writeList(indexField, count, [&](std::size_t i) { text.writeInt(static_cast<int>(i)); });
  text.write("  }\n}\n");
}

void writeAscendingNormals(SceneText& text, int size, Random& random) {
  writeTerrainByFace(text, makeTerrain(size, random), "Normal", "vector", "normalIndex",
                     [&](std::size_t i) {
                       text.writeExact(static_cast<double>(i));
                       text.write(" 1 0");
                     });
}

void writeAscendingMaterials(SceneText& text, int size, Random& random) {
  const Mesh mesh = makeTerrain(size, random);
  const auto count = static_cast<double>(mesh.triangles.size());
  writeTerrainByFace(text, mesh, "Material", "diffuseColor", "materialIndex", [&](std::size_t i) {
    text.writeFixed(static_cast<double>(i) / count, 9);
    text.write(" 0.5 0.5");
  });
}

// Names in ascending order, each of them used once.
void writeAscendingNames(SceneText& text, int size, Random&) {
  text.write("Separator {\n");
  for (const bool isUse : {false, true}) {
    for (int i = 0; i < size; ++i) {
      text.write(isUse ? "USE n" : "DEF n");
      text.writeInt(1000000000 + i);
      text.write(isUse ? "\n" : " Translation { translation 1 0 0 }\n");
    }
  }
  text.write(oneTriangle);
  text.write("}\n");
}

// Triangles that all have one corner in common.
void writeFan(SceneText& text, int size, Random& random) {
  Mesh mesh;
  mesh.points.emplace_back();
  for (int i = 0; i < size; ++i) {
    const double angle = 2 * pi * i / size;
    const double radius = random.between(10, 11);
    mesh.points.push_back({radius * std::cos(angle), radius * std::sin(angle), random.unit()});
    mesh.triangles.push_back({0, 1 + i, 1 + (i + 1) % size});
  }
  writeMesh(text, mesh);
}

// One polygon with that outline, in a slanted plane.
void writeOutline(SceneText& text, std::span<const std::array<double, 2>> outline) {
  text.write("Separator {\n  ShapeHints { faceType UNKNOWN_FACE_TYPE }\n  Coordinate3 {\n");
  text.writeList("point", outline.size(), [&](std::size_t i) {
    const auto [x, y] = outline[i];
    text.writeFixed({x, y, 0.5 * x + 0.25 * y});
  });
  text.write("  }\n  IndexedFaceSet {\n");
  text.writeList("coordIndex", 1,
                 [&](std::size_t) { text.writePolygon(0, static_cast<int>(outline.size())); });
  text.write("  }\n}\n");
}

std::vector<std::array<double, 2>> makeComb(int size, Random& random) {
  std::vector<std::array<double, 2>> outline = {{0, -1}, {double(size), -1}};
  for (int x = size - 2; x > 0; --x) {
    outline.push_back({double(x), x % 2 == 0 ? random.between(0, 1) : random.between(90, 100)});
  }
  return outline;
}

void writeComb(SceneText& text, int size, Random& random) {
  writeOutline(text, makeComb(size, random));
}

// Long teeth that run along no axis.
void writeDiagonalComb(SceneText& text, int size, Random& random) {
  std::vector<std::array<double, 2>> outline = makeComb(size, random);
  for (auto& [x, y] : outline) {
    const double along = y * size / 100;
    y = along + x;
    x = along - x;
  }
  writeOutline(text, outline);
}

// A band that winds outwards: 60 corners for each turn of either edge.
void writeSpiral(SceneText& text, int size, Random&) {
  constexpr double cornersPerTurn = 60;
  std::vector<std::array<double, 2>> outline;
  const int half = std::max(2, size / 2);
  const auto add = [&](int i, double offset) {
    const double turns = i / cornersPerTurn;
    const double radius = 1 + turns + offset;
    outline.push_back({radius * std::cos(2 * pi * turns), radius * std::sin(2 * pi * turns)});
  };
  for (int i = 0; i < half; ++i) add(i, 0.5);
  for (int i = half; i-- > 0;) add(i, 0);
  writeOutline(text, outline);
}

void writeStar(SceneText& text, int size, Random& random) {
  std::vector<std::array<double, 2>> outline;
  for (int i = 0; i < size; ++i) {
    const double angle = 2 * pi * i / size;
    const double radius = random.between(200, 1000);
    outline.push_back({radius * std::cos(angle), radius * std::sin(angle)});
  }
  writeOutline(text, outline);
}

// A strip of triangles through the points.
void writeStrip(SceneText& text, std::span<const Point> points) {
  std::vector<Triangle> triangles;
  for (int i = 0; i + 2 < static_cast<int>(points.size()); ++i) {
    triangles.push_back({i, i + 1, i + 2});
  }
  text.write("Separator {\n");
  text.writeExactPoints(points);
  text.writeFaces(triangles);
  text.write("}\n");
}

// Ten neighbouring floats on each axis, in a box that is much larger.
void writeNearFloats(SceneText& text, int size, Random& random) {
  constexpr double step = 0x1p-23;
  std::vector<Point> points = {{0, 0, 0}, {2, 2, 2}};
  while (static_cast<int>(points.size()) < size) {
    points.push_back(
        {1 + step * random.below(10), 1 + step * random.below(10), 1 + step * random.below(10)});
  }
  writeStrip(text, points);
}

// From the smallest to the largest float that there is.
void writeExtremeFloats(SceneText& text, int size, Random& random) {
  using Limits = std::numeric_limits<float>;
  constexpr double largest = Limits::max();
  constexpr double smallest = Limits::denorm_min();
  std::vector<Point> points = {{-largest, -largest, -largest},
                               {largest, largest, largest},
                               {smallest, -smallest, 0},
                               {-smallest, smallest, largest}};
  const auto any = [&] {
    const double size2 = std::ldexp(1 + random.unit(), -149 + random.below(276));
    return random.below(2) == 0 ? size2 : -size2;
  };
  while (static_cast<int>(points.size()) < size) points.push_back({any(), any(), any()});
  writeStrip(text, points);
}

void writeCopies(SceneText& text, int size, Random&) {
  std::vector<Point> points(static_cast<std::size_t>(std::max(1, size)), {0.25, 0.5, 0.75});
  points.push_back({1, 0, 0});
  points.push_back({0, 1, 0});
  std::vector<Triangle> triangles;
  for (int i = 0; i < size; ++i) triangles.push_back({i, size, size + 1});
  text.write("Separator {\n");
  text.writePoints(points);
  text.writeFaces(triangles);
  text.write("}\n");
}

void writeImage(SceneText& text, int size, Random& random) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  text.write("Separator {\n  Texture2 {\n    image ");
  text.writeInt(size);
  text.write(" ");
  text.writeInt(size);
  text.write(" 3");
  for (int y = 0; y < size; ++y) {
    text.write("\n     ");
    for (int x = 0; x < size; ++x) {
      text.write(" 0x");
      std::uint64_t color = random.next();
      for (int i = 0; i < 6; ++i, color >>= 4) text.write(digits.substr(color & 15, 1));
    }
  }
  text.write("\n  }\n");
  text.write(oneTriangle);
  text.write("}\n");
}

// One line that comes ever closer to a point and starts again: an octree as deep as can be, with
// few points in each layer.
void writeDeepLines(SceneText& text, int size, Random& random) {
  std::vector<Point> points = {{1e30, 1e30, 1e30}};
  for (int i = 0; static_cast<int>(points.size()) < size; ++i) {
    const double distance = std::ldexp(1e30, -(i % 240));
    points.push_back({distance * random.unit(), distance * random.unit(), distance});
  }
  text.write("Separator {\n");
  text.writeExactPoints(points);
  text.write("  IndexedLineSet {\n");
  text.writeList("coordIndex", 1,
                 [&](std::size_t) { text.writePolygon(0, static_cast<int>(points.size())); });
  text.write("  }\n}\n");
}

// ---------------------------------------------------------------------------------------------

using Writer = void (*)(SceneText& text, int size, Random& random);

constexpr std::array<std::pair<SceneKind, Writer>, 22> table = {{
    {{"sphere", "triangles", "a smooth closed mesh"}, writeSphere},
    {{"terrain", "triangles", "a rough height field"}, writeTerrain},
    {{"body", "triangles", "an irregular closed mesh with noise, as if scanned"}, writeBody},
    {{"attributes", "triangles", "a sphere with normals, materials and texture coordinates"},
     writeAttributes},
    {{"shapes", "shapes", "octahedra and boxes, each with its own points"}, writeShapes},
    {{"shared", "shapes", "patches of 100 triangles, all on one list of points"}, writeShared},
    {{"polygons", "polygons", "flat polygons of 5 to 40 corners"}, writePolygons},
    {{"nest", "levels", "nested separators"}, writeNest},
    {{"use-bomb", "doublings", "groups that each use the one before twice"}, writeUseBomb},
    {{"ascending-normals", "normals", "normals in ascending order"}, writeAscendingNormals},
    {{"ascending-materials", "materials", "materials in ascending order"}, writeAscendingMaterials},
    {{"ascending-names", "names", "DEF names in ascending order"}, writeAscendingNames},
    {{"fan", "triangles", "triangles round one hub"}, writeFan},
    {{"comb", "corners", "one polygon with teeth"}, writeComb},
    {{"diagonal-comb", "corners", "one polygon with long teeth askew"}, writeDiagonalComb},
    {{"spiral", "corners", "one polygon that winds outwards"}, writeSpiral},
    {{"star", "corners", "one polygon with spikes of all lengths"}, writeStar},
    {{"near-floats", "points", "points within ten neighbouring floats"}, writeNearFloats},
    {{"extreme-floats", "points", "points from the smallest to the largest float"},
     writeExtremeFloats},
    {{"copies", "points", "copies of one point"}, writeCopies},
    {{"image", "pixels a side", "a square texture image"}, writeImage},
    {{"deep-lines", "points", "a line through points ever closer together"}, writeDeepLines},
}};

constexpr auto kinds = [] {
  std::array<SceneKind, table.size()> list{};
  for (std::size_t i = 0; i < table.size(); ++i) list[i] = table[i].first;
  return list;
}();

}  // namespace

std::span<const SceneKind> getSceneKinds() { return kinds; }

bool writeScene(std::FILE* file, std::string_view kind, int size, std::uint64_t seed) {
  for (const auto& [entry, write] : table) {
    if (entry.name != kind) continue;
    SceneText text(file);
    Random random(seed);
    write(text, size, random);
    return text.finish();
  }
  return false;
}

}  // namespace varimesh
