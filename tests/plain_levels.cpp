#include "plain_levels.h"

#include <algorithm>
#include <cmath>
#include <forward_list>
#include <memory>
#include <utility>

namespace varimesh::plain {
namespace {

float narrow(double value) { return static_cast<float>(value); }

struct Shape;

struct Node {
  Point at{};
  int lod = 0;
  int index = -1;
  int depth = 1;
  int usedCount = 0;
  Node* represent = nullptr;
  Node* selected = nullptr;
  std::array<Node*, 8> children{};
  std::forward_list<Shape*> shapeRefs;
};

Node* representOf(Node* node, int level) {
  while (node->represent && node->represent->lod >= 0 && node->represent->lod <= level) {
    node = node->represent;
  }
  return node;
}

Node* selectedOf(Node* node, int level) {
  while (node->selected && node->selected->lod >= level) node = node->selected;
  return node;
}

struct Shape {
  virtual ~Shape() = default;
  virtual double errorArea(Node*, int) const { return 0; }
  virtual double errorVolume(Node*, int) const { return 0; }
  int done = 0;
};

struct Vertex {
  Node* coord = nullptr;
  Corner data{};
};

Outline outlineOf(const std::vector<Vertex>& vertices) {
  Outline outline;
  for (Vertex v : vertices) {
    v.data.point = v.coord->index;
    outline.push_back(v.data);
  }
  return outline;
}

// ---- Vectors: components single, formulas double

Point minus(const Point& a, const Point& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
double dot(const Point& a, const Point& b) {
  return static_cast<double>(a[0]) * b[0] + static_cast<double>(a[1]) * b[1] +
         static_cast<double>(a[2]) * b[2];
}
float length(const Point& a) { return narrow(std::sqrt(dot(a, a))); }
// The cross product divided by its length, null when it has none.
Point unitNormal(const Point& a, const Point& b) {
  std::array<double, 3> n{};
  for (std::size_t k = 0; k < 3; ++k) {
    const std::size_t i = (k + 1) % 3;
    const std::size_t j = (k + 2) % 3;
    n[k] = static_cast<double>(a[i]) * b[j] - static_cast<double>(a[j]) * b[i];
  }
  const double size = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
  if (size == 0) return {};
  return {narrow(n[0] / size), narrow(n[1] / size), narrow(n[2] / size)};
}

// ---- Faces

struct Face : Shape {
  Face(const std::vector<Vertex>& corners, float split);
  double errorArea(Node* cell, int level) const override;
  double errorVolume(Node* cell, int level) const override;
  double volume(std::size_t i, std::size_t j, std::size_t k, Node* cell, int level) const;
  double area() const;
  // The dot products of opposite normals; true when either is below the split cosine.
  bool irregular(int& diagonal) const;
  std::size_t countAt(int level) const;
  Face represent(int level) const;
  bool within(const Face& other, int vertexOrdering) const;

  std::vector<Vertex> v;
  std::vector<float> cornerArea;
  std::vector<Point> cornerNormal;
  float splitCosinus;
};

Face::Face(const std::vector<Vertex>& corners, float split) : v(corners), splitCosinus(split) {
  std::erase_if(v, [](const Vertex& vertex) { return !vertex.coord; });
  for (std::size_t i = 0; i < v.size();) {
    if (v[i].coord == v[(i + 1) % v.size()].coord) {
      v.erase(v.begin() + static_cast<std::ptrdiff_t>(i));
    } else {
      ++i;
    }
  }
  const std::size_t n = v.size();
  cornerArea.assign(n, 0);
  cornerNormal.assign(n, Point{});
  if (n <= 2) return;
  std::vector<Point> edge;
  std::vector<float> len;
  for (std::size_t i = 0; i < n; ++i) {
    edge.push_back(minus(v[(i + 1) % n].coord->at, v[i].coord->at));
    len.push_back(length(edge[i]));
  }
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t p = (i + n - 1) % n;
    const double product = static_cast<double>(len[i]) * len[p];
    if (product != 0) {
      const double c = dot(edge[i], edge[p]) / product;
      const double s2 = std::max(1 - c * c, 0.0);
      cornerArea[i] = narrow(std::sqrt(s2) * product / 2);
    }
    cornerNormal[i] = unitNormal(edge[i], edge[p]);
  }
  for (std::size_t i = 0; i < n; ++i) {
    if (cornerNormal[i] == Point{}) cornerNormal[i] = cornerNormal[(i + 1) % n];
  }
}

bool Face::irregular(int& diagonal) const {
  diagonal = 0;
  if (v.size() < 4) return false;
  const double a = dot(cornerNormal[0], cornerNormal[2]);
  const double b = dot(cornerNormal[1], cornerNormal[3]);
  diagonal = b > a ? 0 : 1;
  return a < splitCosinus || b < splitCosinus;
}

double Face::area() const {
  if (v.size() < 3) return 0;
  if (v.size() == 3) return cornerArea[0];
  int d = 0;
  irregular(d);
  return d == 1 ? static_cast<double>(cornerArea[0]) + cornerArea[2]
                : static_cast<double>(cornerArea[1]) + cornerArea[3];
}

double Face::errorArea(Node* cell, int level) const {
  if (v.size() < 3) return 0;
  std::vector<Vertex> moved = v;
  for (Vertex& vertex : moved) {
    if (representOf(vertex.coord, level) == cell) vertex.coord = cell;
  }
  return Face(moved, splitCosinus).area() - area();
}

double Face::errorVolume(Node* cell, int level) const {
  if (v.size() < 3) return 0;
  if (v.size() == 3) return volume(0, 1, 2, cell, level);
  int d = 0;
  irregular(d);
  return d == 1 ? volume(1, 2, 3, cell, level) + volume(1, 3, 0, cell, level)
                : volume(0, 1, 2, cell, level) + volume(0, 2, 3, cell, level);
}

double Face::volume(std::size_t i, std::size_t j, std::size_t k, Node* cell, int level) const {
  if (representOf(v[i].coord, level) != cell && representOf(v[j].coord, level) != cell &&
      representOf(v[k].coord, level) != cell) {
    return 0;
  }
  const Point offset = minus(cell->at, v[i].coord->at);
  return narrow(std::fabs(dot(offset, cornerNormal[i]) * cornerArea[i] / 3));
}

std::size_t Face::countAt(int level) const {
  std::size_t n = v.size();
  for (std::size_t i = 0; i < v.size(); ++i) {
    if (representOf(v[i].coord, level) == representOf(v[(i + 1) % v.size()].coord, level)) --n;
  }
  return n;
}

Face Face::represent(int level) const {
  std::vector<Vertex> slots(v.size());
  for (std::size_t i = 0; i < v.size(); ++i) {
    Node* r = representOf(v[i].coord, level);
    const Node* s = selectedOf(r, v[i].coord->lod);
    const bool other =
        std::any_of(v.begin(), v.end(), [s](const Vertex& vertex) { return vertex.coord == s; });
    if (v[i].coord == s || !other) slots[i] = {r, v[i].data};
  }
  return Face(slots, splitCosinus);
}

bool Face::within(const Face& other, int vertexOrdering) const {
  const std::size_t n = v.size();
  const std::size_t m = other.v.size();
  const auto o = [&](std::size_t k) { return other.v[k % m].coord; };
  if (n < 2) return true;
  for (std::size_t k = 0; k < m; ++k) {
    if (n == 2 && o(k) == v[0].coord) {
      const Node* q = v[1].coord;
      if (o(k + 1) == q || o(k + m - 1) == q || (m == 4 && o(k + 2) == q)) return true;
    }
    if ((n == 3 && m >= 3) || (n == 4 && m == 4)) {
      bool same = true;
      bool reverse = vertexOrdering == 0;
      for (std::size_t i = 0; i < n; ++i) {
        same = same && o(k + i) == v[i].coord;
        reverse = reverse && o(k + i) == v[n - 1 - i].coord;
      }
      if (same || reverse) return true;
    }
  }
  return false;
}

struct Line : Shape {
  Line(const Vertex& a, const Vertex& b) : v{a, b} {}
  Vertex endpointAt(std::size_t i, int level) const {
    Vertex e = v[i];
    Node* r = representOf(e.coord, level);
    const Node* s = selectedOf(r, e.coord->lod);
    if (s != e.coord && v[1 - i].coord == s) return {};
    e.coord = r;
    return e;
  }
  std::vector<Vertex> v;
};

// ---- Points

struct Box {
  Point lo{};
  Point hi{};
  void enlarge(const Point& p) {
    for (std::size_t i = 0; i < 3; ++i) {
      lo[i] = std::min(lo[i], p[i]);
      hi[i] = std::max(hi[i], p[i]);
    }
  }
  float middle(std::size_t i) const { return narrow((static_cast<double>(lo[i]) + hi[i]) / 2); }
  void makeCubic() {
    Point c{};
    float half = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      c[i] = middle(i);
      half = std::max(half, hi[i] - c[i]);
    }
    for (std::size_t i = 0; i < 3; ++i) {
      hi[i] = std::max(hi[i], c[i] + half);
      lo[i] = std::min(lo[i], c[i] - half);
    }
  }
};

class Generator {
 public:
  Generator(const std::vector<Point>& points, const Rules& rules);
  Levels run(const Input& input);
  int count = 0;
  int cellCount = 0;

 private:
  void insertPoint(Node*& p, Node*& slot, Box box);
  int calcDepth(Node* node);
  int calcCount(Node* node);
  void deleteShapeRefs(Node* node);
  void reset(Node* node);
  void generateNext();
  void collapseBelow(Node* c, int& running);
  Node* select(Node* c);
  std::array<float, 8> calcError(Node* c, int method);
  float range() const;

  void admit(Shape* shape, const std::vector<Vertex>& vertices);
  void insert(const Face& face);
  bool insertOk(const Face& face) const;
  void insert(const Line& line);
  void nextFaces(const std::vector<Shape*>& old);
  void nextLines(const std::vector<Shape*>& old);
  Level measure();

  Rules rules_;
  Box bounds_;
  Node* root_ = nullptr;
  std::vector<Node*> references_;
  int currentLOD_ = 0;
  int shapeType_ = 1;
  int vertexOrdering_ = 0;
  Level level_;                // counts of the set being filled
  std::vector<Shape*> set_;    // its shapes, in order
  std::vector<std::unique_ptr<Node>> nodes_;
  std::vector<std::unique_ptr<Shape>> shapes_;
};

Generator::Generator(const std::vector<Point>& points, const Rules& rules) : rules_(rules) {
  if (!points.empty()) bounds_ = {points[0], points[0]};
  for (const Point& p : points) bounds_.enlarge(p);
  bounds_.makeCubic();
  for (const Point& p : points) {
    nodes_.push_back(std::make_unique<Node>());
    Node* node = nodes_.back().get();
    node->at = p;
    insertPoint(node, root_, bounds_);
    references_.push_back(node);
  }
  int index = 0;
  for (Node* node : references_) {
    if (node->index < 0) node->index = index++;
  }
}

void Generator::insertPoint(Node*& p, Node*& slot, Box box) {
  if (!slot) {
    slot = p;
    ++count;
    return;
  }
  Point centre{};
  for (std::size_t i = 0; i < 3; ++i) {
    centre[i] = box.middle(i);
    if (box.lo[i] < box.hi[i] && centre[i] >= box.hi[i]) centre[i] = box.lo[i];
  }
  if (slot->lod < 0) {
    std::size_t octant = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      const bool greater = p->at[i] > slot->at[i];
      octant = 2 * octant + (greater ? 1 : 0);
      (greater ? box.lo : box.hi)[i] = slot->at[i];
    }
    insertPoint(p, slot->children[octant], box);
  } else if (slot->at == p->at) {
    p = slot;
  } else {
    Node* old = slot;
    nodes_.push_back(std::make_unique<Node>());
    slot = nodes_.back().get();
    slot->at = centre;
    slot->lod = -1;
    ++cellCount;
    --count;
    insertPoint(old, slot, box);
    insertPoint(p, slot, box);
  }
}

int Generator::calcDepth(Node* node) {
  if (!node) return 0;
  int d = 0;
  if (node->lod < 0) {
    for (Node* child : node->children) d = std::max(d, calcDepth(child));
  }
  if (d > 0 || !node->shapeRefs.empty()) ++d;
  return node->depth = d;
}

int Generator::calcCount(Node* node) {
  if (!node) return 0;
  int n = 0;
  if (node->lod < 0) {
    for (Node* child : node->children) n += calcCount(child);
  }
  if (n == 0 && !node->shapeRefs.empty()) n = 1;
  return node->usedCount = n;
}

void Generator::deleteShapeRefs(Node* node) {
  if (!node) return;
  for (Node* child : node->children) deleteShapeRefs(child);
  node->shapeRefs.clear();
}

void Generator::reset(Node* node) {
  if (!node) return;
  bool cell = false;
  for (Node* child : node->children) {
    reset(child);
    cell = cell || child;
  }
  node->lod = cell ? -1 : 0;
}

// ---- Levels of the octree

void Generator::generateNext() {
  if (!root_) return;
  const int depth = calcDepth(root_);
  if (depth <= 1) return;
  const int n = calcCount(root_);
  int d = static_cast<int>(static_cast<double>(rules_.minDiff) * n);
  if (d == 0) d = 1;
  int target = n - d;
  if (target <= 0) target = 1;
  int running = n;
  do {
    collapseBelow(root_, running);
  } while (root_->depth == depth || running > target);
  ++currentLOD_;
}

void Generator::collapseBelow(Node* c, int& running) {
  Node* picked = nullptr;
  for (Node* child : c->children) {
    if (!child) continue;
    if (!picked || child->depth > picked->depth ||
        (child->depth == picked->depth && child->usedCount > picked->usedCount)) {
      picked = child;
    }
  }
  if (picked->depth > 1) {
    const int m = picked->depth;
    collapseBelow(picked, running);
    if (picked->depth >= m) return;
    c->depth = 0;
    for (const Node* child : c->children) {
      if (child) c->depth = std::max(c->depth, child->depth);
    }
    ++c->depth;
    return;
  }
  int k = 0;
  for (Node* child : c->children) {
    if (!child || child->usedCount <= 0) continue;
    child->represent = c;
    ++k;
  }
  c->lod = currentLOD_ + 1;
  Node* r = select(c);
  c->at = r->at;
  c->selected = r;
  c->index = r->index;
  c->depth = 1;
  running = running - k + 1;
}

Node* Generator::select(Node* c) {
  std::array<float, 8> total{};
  if (shapeType_ == 1) {
    // With no measure at all every present child has the total 0.
    for (std::size_t i = 0; i < 8; ++i) {
      if (!c->children[i] || c->children[i]->usedCount <= 0) total[i] = -1;
    }
    for (int method = 1; method <= 3; ++method) {
      const float weight = rules_.weights[static_cast<std::size_t>(method - 1)];
      if (!(weight > 0)) continue;
      const auto errors = calcError(c, method);
      for (std::size_t i = 0; i < 8; ++i) {
        total[i] = errors[i] < 0 ? errors[i]
                                 : narrow(total[i] + static_cast<double>(weight) * errors[i]);
      }
    }
  } else {
    total = calcError(c, 3);
  }
  int best = -1;
  for (std::size_t i = 0; i < 8; ++i) {
    if (total[i] >= 0 && (best < 0 || total[i] < total[static_cast<std::size_t>(best)])) {
      best = static_cast<int>(i);
    }
  }
  return c->children.at(static_cast<std::size_t>(best));
}

std::array<float, 8> Generator::calcError(Node* c, int method) {
  const int level = currentLOD_ + 1;
  std::array<float, 8> e{};
  e.fill(-1);
  const auto present = [&](std::size_t i) { return c->children[i] && c->children[i]->usedCount > 0; };
  std::array<double, 3> mean{};
  double weight = 0;
  for (std::size_t i = 0; i < 8; ++i) {
    if (!present(i)) continue;
    weight += c->children[i]->usedCount;
    for (std::size_t a = 0; a < 3; ++a) {
      mean[a] += static_cast<double>(c->children[i]->at[a]) * c->children[i]->usedCount;
    }
  }
  for (double& x : mean) x /= weight;
  for (std::size_t i = 0; i < 8; ++i) {
    if (!present(i)) continue;
    if (method == 3) {
      double sum = 0;
      for (std::size_t a = 0; a < 3; ++a) {
        const double offset = c->children[i]->at[a] - mean[a];
        sum += offset * offset;
      }
      e[i] = narrow(std::sqrt(sum));
      continue;
    }
    c->at = c->children[i]->at;
    for (std::size_t j = 0; j < 8; ++j) {
      if (!present(j)) continue;
      for (Shape* shape : c->children[j]->shapeRefs) shape->done = 0;
    }
    long double sum = 0;
    for (std::size_t j = 0; j < 8; ++j) {
      if (!present(j)) continue;
      for (Shape* shape : c->children[j]->shapeRefs) {
        if (shape->done) continue;
        sum += method == 1 ? shape->errorArea(c, level) : shape->errorVolume(c, level);
        shape->done = 1;
      }
    }
    e[i] = static_cast<float>(std::fabs(sum));
  }
  const float max = *std::max_element(e.begin(), e.end());
  for (float& x : e) {
    if (x > 0) x /= max;
  }
  return e;
}

float Generator::range() const {
  if (!root_) return 0;
  const float t = narrow(2 * std::tan(static_cast<double>(rules_.cameraHeightAngle) / 2));
  const float f = narrow(static_cast<double>(t) * rules_.errorRange / 100);
  float e = 0;
  for (std::size_t i = 0; i < 3; ++i) e = std::max(e, bounds_.hi[i] - bounds_.lo[i]);
  return narrow(std::sqrt(3.0) * e / std::pow(2.0, root_->depth - 1) / f);
}

// ---- Sets of shapes

void Generator::admit(Shape* shape, const std::vector<Vertex>& vertices) {
  set_.push_back(shape);
  level_.shapes.push_back(outlineOf(vertices));
  for (const Vertex& vertex : vertices) vertex.coord->shapeRefs.push_front(shape);
  ++level_.setCount;
}

bool Generator::insertOk(const Face& face) const {
  const std::size_t n = face.v.size();
  if (n < 2 || (rules_.nolines && n == 2)) return false;
  for (std::size_t i = 0; i + 1 < n; ++i) {
    for (const Shape* shape : face.v[i].coord->shapeRefs) {
      if (face.within(*dynamic_cast<const Face*>(shape), vertexOrdering_)) return false;
    }
  }
  return true;
}

void Generator::insert(const Face& face) {
  const std::vector<Vertex>& v = face.v;
  if (v.size() == 4) {
    int d = 0;
    const bool irregular = face.irregular(d);
    std::vector<std::vector<Vertex>> parts;
    if (v[0].coord == v[2].coord || v[1].coord == v[3].coord) {
      parts = {{v[0], v[1]}, {v[2], v[3]}};
    } else if (irregular || rules_.noquads) {
      parts = {{v[0], v[1], v[2]}, {v[0], v[2], v[3]}};
      if (d == 1) parts = {{v[1], v[2], v[3]}, {v[0], v[1], v[3]}};
    }
    for (const auto& part : parts) insert(Face(part, rules_.splitCosinus));
    if (!parts.empty()) return;
  }
  if (!insertOk(face)) return;
  shapes_.push_back(std::make_unique<Face>(face));
  admit(shapes_.back().get(), v);
  if (v.size() == 2) {
    ++level_.lineCount;
  } else {
    ++level_.polygonCount;
    ++(v.size() == 4 ? level_.quadCount : level_.triCount);
  }
}

void Generator::insert(const Line& line) {
  const Node* a = line.v[0].coord;
  const Node* b = line.v[1].coord;
  if (!a || !b || a == b) return;
  for (const Shape* shape : a->shapeRefs) {
    const auto& o = dynamic_cast<const Line*>(shape)->v;
    if ((o[0].coord == a && o[1].coord == b) || (o[0].coord == b && o[1].coord == a)) return;
  }
  shapes_.push_back(std::make_unique<Line>(line));
  admit(shapes_.back().get(), line.v);
}

void Generator::nextFaces(const std::vector<Shape*>& old) {
  for (std::size_t n = 4; n >= 2; --n) {
    for (const Shape* shape : old) {
      const Face& face = *dynamic_cast<const Face*>(shape);
      if (face.countAt(currentLOD_) == n) insert(face.represent(currentLOD_));
    }
  }
}

void Generator::nextLines(const std::vector<Shape*>& old) {
  for (const Shape* shape : old) {
    const Line& line = *dynamic_cast<const Line*>(shape);
    insert(Line(line.endpointAt(0, currentLOD_), line.endpointAt(1, currentLOD_)));
  }
}

Level Generator::measure() {
  level_.used = root_ ? calcCount(root_) : 0;
  bool started = false;
  Box box;
  for (const Shape* shape : set_) {
    const auto* face = dynamic_cast<const Face*>(shape);
    for (const Vertex& vertex : face ? face->v : dynamic_cast<const Line*>(shape)->v) {
      if (!std::exchange(started, true)) box = {vertex.coord->at, vertex.coord->at};
      box.enlarge(vertex.coord->at);
    }
  }
  double square = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    level_.center[i] = box.middle(i);
    const double extent = static_cast<double>(box.hi[i]) - box.lo[i];
    square += extent * extent;
  }
  level_.sphere = narrow(std::sqrt(square));
  return level_;
}

Levels Generator::run(const Input& input) {
  shapeType_ = input.shapeType;
  vertexOrdering_ = input.vertexOrdering;
  deleteShapeRefs(root_);
  set_.clear();
  level_ = Level();
  for (const Outline& outline : input.outlines) {
    std::vector<Vertex> vertices;
    for (const Corner& corner : outline) {
      vertices.push_back({references_.at(static_cast<std::size_t>(corner.point)), corner});
    }
    if (shapeType_ == 1) {
      insert(Face(vertices, rules_.splitCosinus));
    } else {
      insert(Line(vertices.at(0), vertices.at(1)));
    }
  }
  reset(root_);
  level_.depth = calcDepth(root_);
  currentLOD_ = 0;
  Levels levels{measure()};
  while (levels.back().used > 1 && levels.back().setCount > 0) {
    generateNext();
    const std::vector<Shape*> old = std::exchange(set_, {});
    level_ = Level();
    level_.depth = root_->depth;
    deleteShapeRefs(root_);
    shapeType_ == 1 ? nextFaces(old) : nextLines(old);
    levels.back().range = range();
    levels.push_back(measure());
  }
  return levels;
}

}  // namespace

Result generate(const std::vector<Point>& points, const std::vector<Input>& inputs, const Rules& rules) {
  Generator generator(points, rules);
  Result result{generator.count, generator.cellCount, {}};
  for (const Input& input : inputs) result.shapes.push_back(generator.run(input));
  return result;
}

}  // namespace varimesh::plain
