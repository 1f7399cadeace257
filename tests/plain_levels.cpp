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

// An input point (lod 0), an octree cell (lod -1), or a cell collapsed at level `lod`.
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

// Components are single, formulas are double.
using Exact = std::array<double, 3>;

Point minus(const Point& a, const Point& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }

double dot(const Point& a, const Point& b) {
  double sum = 0;
  for (std::size_t i = 0; i < 3; ++i) sum += static_cast<double>(a[i]) * b[i];
  return sum;
}

double length(const Exact& a) { return std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]); }

Point unitNormal(const Point& a, const Point& b) {
  const auto part = [&](std::size_t i, std::size_t j) {
    return static_cast<double>(a[i]) * b[j] - static_cast<double>(a[j]) * b[i];
  };
  const Exact n = {part(1, 2), part(2, 0), part(0, 1)};
  const double size = length(n);
  if (size == 0) return {};
  return {narrow(n[0] / size), narrow(n[1] / size), narrow(n[2] / size)};
}

struct Vertex {
  Node* coord = nullptr;
  Corner data{};
};

// A face of up to four corners. A segment of a line set is a face of two.
struct Shape {
  std::vector<Vertex> v;
  std::vector<float> cornerArea;
  std::vector<Point> cornerNormal;
  int diagonal = 0;  // of a quadrangle
  bool isIrregular = false;
  int done = 0;

  Shape(std::vector<Vertex> corners, float splitCosinus) : v(std::move(corners)) {
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
    std::vector<Point> edge(n);
    std::vector<double> len(n);
    for (std::size_t i = 0; i < n; ++i) {
      edge[i] = minus(v[(i + 1) % n].coord->at, v[i].coord->at);
      len[i] = narrow(std::sqrt(dot(edge[i], edge[i])));
    }
    for (std::size_t i = 0; i < n; ++i) {
      const std::size_t p = (i + n - 1) % n;
      const double product = len[i] * len[p];
      if (product != 0) {
        const double c = dot(edge[i], edge[p]) / product;
        cornerArea[i] = narrow(std::sqrt(std::max(1 - c * c, 0.0)) * product / 2);
      }
      cornerNormal[i] = unitNormal(edge[i], edge[p]);
    }
    for (std::size_t i = 0; i < n; ++i) {
      if (cornerNormal[i] == Point{}) cornerNormal[i] = cornerNormal[(i + 1) % n];
    }
    if (n < 4) return;
    const double a = dot(cornerNormal[0], cornerNormal[2]);
    const double b = dot(cornerNormal[1], cornerNormal[3]);
    diagonal = b > a ? 0 : 1;
    isIrregular = a < splitCosinus || b < splitCosinus;
  }

  [[nodiscard]] double area() const {
    if (v.size() < 3) return 0;
    if (v.size() == 3) return cornerArea[0];
    return diagonal == 1 ? static_cast<double>(cornerArea[0]) + cornerArea[2]
                         : static_cast<double>(cornerArea[1]) + cornerArea[3];
  }

  [[nodiscard]] double errorArea(Node* cell, int level, float splitCosinus) const {
    if (v.size() < 3) return 0;
    std::vector<Vertex> moved = v;
    for (Vertex& vertex : moved) {
      if (representOf(vertex.coord, level) == cell) vertex.coord = cell;
    }
    return Shape(moved, splitCosinus).area() - area();
  }

  [[nodiscard]] double errorVolume(Node* cell, int level) const {
    const auto volume = [&](std::size_t i, std::size_t j, std::size_t k) -> double {
      const auto moves = [&](std::size_t c) { return representOf(v[c].coord, level) == cell; };
      if (!moves(i) && !moves(j) && !moves(k)) return 0;
      const Point offset = minus(cell->at, v[i].coord->at);
      return narrow(std::fabs(dot(offset, cornerNormal[i]) * cornerArea[i] / 3));
    };
    if (v.size() < 3) return 0;
    if (v.size() == 3) return volume(0, 1, 2);
    return diagonal == 1 ? volume(1, 2, 3) + volume(1, 3, 0) : volume(0, 1, 2) + volume(0, 2, 3);
  }

  [[nodiscard]] std::size_t countAt(int level) const {
    std::size_t n = v.size();
    for (std::size_t i = 0; i < v.size(); ++i) {
      if (representOf(v[i].coord, level) == representOf(v[(i + 1) % v.size()].coord, level)) --n;
    }
    return n;
  }

  [[nodiscard]] std::vector<Vertex> represent(int level) const {
    std::vector<Vertex> slots(v.size());
    for (std::size_t i = 0; i < v.size(); ++i) {
      Node* r = representOf(v[i].coord, level);
      const Node* s = selectedOf(r, v[i].coord->lod);
      const auto isSelected = [s](const Vertex& vertex) { return vertex.coord == s; };
      if (isSelected(v[i]) || std::none_of(v.begin(), v.end(), isSelected))
        slots[i] = {r, v[i].data};
    }
    return slots;
  }

  [[nodiscard]] bool isWithin(const Shape& other, int vertexOrdering) const {
    const std::size_t n = v.size();
    const std::size_t m = other.v.size();
    const auto at = [&](std::size_t k) { return other.v[k % m].coord; };
    if (n < 2) return true;
    for (std::size_t k = 0; k < m; ++k) {
      if (n == 2) {
        const Node* q = v[1].coord;
        const bool isDiagonal = m == 4 && at(k + 2) == q;
        if (at(k) == v[0].coord && (at(k + 1) == q || at(k + m - 1) == q || isDiagonal))
          return true;
      } else if (m >= 3 && (n == 3 || m == 4)) {
        bool same = true;
        bool reverse = vertexOrdering == 0;
        for (std::size_t i = 0; i < n; ++i) {
          same = same && at(k + i) == v[i].coord;
          reverse = reverse && at(k + i) == v[n - 1 - i].coord;
        }
        if (same || reverse) return true;
      }
    }
    return false;
  }
};

struct Box {
  Point lo{}, hi{};

  void enlarge(const Point& p) {
    for (std::size_t i = 0; i < 3; ++i) {
      lo[i] = std::min(lo[i], p[i]);
      hi[i] = std::max(hi[i], p[i]);
    }
  }
  [[nodiscard]] float middle(std::size_t i) const {
    return narrow((static_cast<double>(lo[i]) + hi[i]) / 2);
  }
  void makeCubic() {
    const Point c = {middle(0), middle(1), middle(2)};
    const float half = std::max({hi[0] - c[0], hi[1] - c[1], hi[2] - c[2]});
    for (std::size_t i = 0; i < 3; ++i) {
      hi[i] = std::max(hi[i], c[i] + half);
      lo[i] = std::min(lo[i], c[i] - half);
    }
  }
};

class Generator {
 public:
  int count = 0;

  Generator(const std::vector<Point>& points, const Rules& rules) : rules_(rules) {
    if (!points.empty()) bounds_ = {points[0], points[0]};
    for (const Point& p : points) bounds_.enlarge(p);
    bounds_.makeCubic();
    for (const Point& p : points) {
      Node* node = makeNode(p, 0);
      insertPoint(node, root_, bounds_);
      references_.push_back(node);
    }
    int index = 0;
    for (Node* node : references_) {
      if (node->index < 0) node->index = index++;
    }
  }

  Levels run(const Input& input) {
    input_ = &input;
    deleteShapeRefs(root_);
    set_.clear();
    for (const Outline& outline : input.outlines) {
      std::vector<Vertex> vertices;
      for (const Corner& corner : outline) {
        vertices.push_back({references_.at(static_cast<std::size_t>(corner.point)), corner});
      }
      insert(vertices);
    }
    reset(root_);
    currentLOD_ = 0;
    Levels levels{measure()};
    while (levels.back().used > 1 && !set_.empty()) {
      generateNext();
      const std::vector<Shape*> old = std::exchange(set_, {});
      deleteShapeRefs(root_);
      for (std::size_t n = 4; n >= 2; --n) {
        for (const Shape* shape : old) {
          if (shape->countAt(currentLOD_) == n) insert(shape->represent(currentLOD_));
        }
      }
      levels.back().range = range();
      levels.push_back(measure());
    }
    return levels;
  }

 private:
  Node* makeNode(const Point& at, int lod) {
    nodes_.push_back(std::make_unique<Node>());
    nodes_.back()->at = at;
    nodes_.back()->lod = lod;
    return nodes_.back().get();
  }

  // ---- The octree

  void insertPoint(Node*& p, Node*& slot, Box box) {
    if (!slot) {
      slot = p;
      ++count;
    } else if (slot->lod < 0) {
      std::size_t octant = 0;
      for (std::size_t i = 0; i < 3; ++i) {
        const bool isGreater = p->at[i] > slot->at[i];
        octant = 2 * octant + (isGreater ? 1 : 0);
        (isGreater ? box.lo : box.hi)[i] = slot->at[i];
      }
      insertPoint(p, slot->children[octant], box);
    } else if (slot->at == p->at) {
      p = slot;
    } else {
      Point centre{};
      for (std::size_t i = 0; i < 3; ++i) {
        centre[i] = box.middle(i);
        if (box.lo[i] < box.hi[i] && centre[i] >= box.hi[i]) centre[i] = box.lo[i];
      }
      Node* old = std::exchange(slot, makeNode(centre, -1));
      --count;
      insertPoint(old, slot, box);
      insertPoint(p, slot, box);
    }
  }

  int calcDepth(Node* node) {
    if (!node) return 0;
    int d = 0;
    for (Node* child : node->children) {
      if (node->lod < 0) d = std::max(d, calcDepth(child));
    }
    if (d > 0 || !node->shapeRefs.empty()) ++d;
    return node->depth = d;
  }

  int calcCount(Node* node) {
    if (!node) return 0;
    int n = 0;
    for (Node* child : node->children) {
      if (node->lod < 0) n += calcCount(child);
    }
    if (n == 0 && !node->shapeRefs.empty()) n = 1;
    return node->usedCount = n;
  }

  void deleteShapeRefs(Node* node) {
    if (!node) return;
    for (Node* child : node->children) deleteShapeRefs(child);
    node->shapeRefs.clear();
  }

  void reset(Node* node) {
    if (!node) return;
    node->lod = 0;
    for (Node* child : node->children) {
      reset(child);
      if (child) node->lod = -1;
    }
  }

  // ---- The next level

  void generateNext() {
    const int depth = calcDepth(root_);
    if (depth <= 1) return;
    const int n = calcCount(root_);
    int d = static_cast<int>(static_cast<double>(rules_.minDiff) * n);
    if (d == 0) d = 1;
    const int target = std::max(n - d, 1);
    int running = n;
    do {
      collapseBelow(root_, running);
    } while (root_->depth == depth || running > target);
    ++currentLOD_;
  }

  void collapseBelow(Node* c, int& running) {
    Node* picked = nullptr;
    for (Node* child : c->children) {
      if (!child) continue;
      if (!picked || child->depth > picked->depth ||
          (child->depth == picked->depth && child->usedCount > picked->usedCount)) {
        picked = child;
      }
    }
    if (const int m = picked->depth; m > 1) {
      collapseBelow(picked, running);
      if (picked->depth >= m) return;
      c->depth = 1;
      for (const Node* child : c->children) {
        if (child) c->depth = std::max(c->depth, child->depth + 1);
      }
      return;
    }
    for (Node* child : c->children) {
      if (!isPresent(child)) continue;
      child->represent = c;
      --running;
    }
    ++running;
    c->lod = currentLOD_ + 1;
    Node* r = select(c);
    c->at = r->at;
    c->selected = r;
    c->index = r->index;
    c->depth = 1;
  }

  static bool isPresent(const Node* child) { return child && child->usedCount > 0; }

  Node* select(Node* c) {
    std::array<float, 8> total{};
    for (std::size_t i = 0; i < 8; ++i) {
      if (!isPresent(c->children[i])) total[i] = -1;  // also where no measure runs
    }
    if (input_->shapeType != 1) total = calcError(c, 3);
    for (int method = 1; method <= 3 && input_->shapeType == 1; ++method) {
      const double weight = rules_.weights[static_cast<std::size_t>(method - 1)];
      if (weight <= 0) continue;
      const auto e = calcError(c, method);
      for (std::size_t i = 0; i < 8; ++i) {
        total[i] = e[i] < 0 ? e[i] : narrow(total[i] + weight * e[i]);
      }
    }
    std::size_t best = 8;
    for (std::size_t i = 0; i < 8; ++i) {
      if (total[i] >= 0 && (best == 8 || total[i] < total[best])) best = i;
    }
    return c->children.at(best);
  }

  std::array<float, 8> calcError(Node* c, int method) {
    std::array<float, 8> e{};
    e.fill(-1);
    std::vector<std::size_t> present;
    Exact mean{};
    double weight = 0;
    for (std::size_t i = 0; i < 8; ++i) {
      if (!isPresent(c->children[i])) continue;
      present.push_back(i);
      const int n = c->children[i]->usedCount;
      for (std::size_t a = 0; a < 3; ++a) mean[a] += static_cast<double>(c->children[i]->at[a]) * n;
      weight += n;
    }
    for (const std::size_t i : present) {
      const Point& at = c->children[i]->at;
      if (method == 3) {
        e[i] = narrow(
            length({mean[0] / weight - at[0], mean[1] / weight - at[1], mean[2] / weight - at[2]}));
        continue;
      }
      c->at = at;
      for (const std::size_t j : present) {
        for (Shape* shape : c->children[j]->shapeRefs) shape->done = 0;
      }
      long double sum = 0;
      for (const std::size_t j : present) {
        for (Shape* shape : c->children[j]->shapeRefs) {
          if (std::exchange(shape->done, 1) != 0) continue;
          sum += method == 1 ? shape->errorArea(c, currentLOD_ + 1, rules_.splitCosinus)
                             : shape->errorVolume(c, currentLOD_ + 1);
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

  [[nodiscard]] float range() const {
    const double t = narrow(2 * std::tan(static_cast<double>(rules_.cameraHeightAngle) / 2));
    const double f = narrow(t * rules_.errorRange / 100);
    const Point edges = minus(bounds_.hi, bounds_.lo);
    const double e = *std::max_element(edges.begin(), edges.end());
    return narrow(std::sqrt(3.0) * e / std::pow(2.0, root_->depth - 1) / f);
  }

  // ---- The shapes of a level

  void insert(const std::vector<Vertex>& corners) {
    const Shape shape(corners, rules_.splitCosinus);
    const std::vector<Vertex>& v = shape.v;
    if (v.size() == 4) {
      std::vector<std::vector<Vertex>> parts;
      if (v[0].coord == v[2].coord || v[1].coord == v[3].coord) {
        parts = {{v[0], v[1]}, {v[2], v[3]}};
      } else if (shape.isIrregular || rules_.noquads) {
        parts = {{v[0], v[1], v[2]}, {v[0], v[2], v[3]}};
        if (shape.diagonal == 1) parts = {{v[1], v[2], v[3]}, {v[0], v[1], v[3]}};
      }
      for (const auto& part : parts) insert(part);
      if (!parts.empty()) return;
    }
    const bool isRefusedLine = v.size() == 2 && input_->shapeType == 1 && rules_.nolines;
    if (v.size() < 2 || isRefusedLine) return;
    for (std::size_t i = 0; i + 1 < v.size(); ++i) {
      for (const Shape* other : v[i].coord->shapeRefs) {
        if (shape.isWithin(*other, input_->vertexOrdering)) return;
      }
    }
    shapes_.push_back(std::make_unique<Shape>(shape));
    set_.push_back(shapes_.back().get());
    for (const Vertex& vertex : v) vertex.coord->shapeRefs.push_front(set_.back());
  }

  Level measure() {
    Level level;
    level.used = calcCount(root_);
    Box box;
    if (!set_.empty()) box = {set_[0]->v[0].coord->at, set_[0]->v[0].coord->at};
    for (const Shape* shape : set_) {
      level.shapes.emplace_back();
      for (Vertex vertex : shape->v) {
        box.enlarge(vertex.coord->at);
        vertex.data.point = vertex.coord->index;
        level.shapes.back().push_back(vertex.data);
      }
    }
    Exact extent{};
    for (std::size_t i = 0; i < 3; ++i) {
      level.center[i] = box.middle(i);
      extent[i] = static_cast<double>(box.hi[i]) - box.lo[i];
    }
    level.sphere = narrow(length(extent));
    return level;
  }

  Rules rules_;
  Box bounds_;
  Node* root_ = nullptr;
  std::vector<Node*> references_;
  int currentLOD_ = 0;
  const Input* input_ = nullptr;
  std::vector<Shape*> set_;
  std::vector<std::unique_ptr<Node>> nodes_;
  std::vector<std::unique_ptr<Shape>> shapes_;
};

}  // namespace

Result generate(const std::vector<Point>& points, const std::vector<Input>& inputs,
                const Rules& rules) {
  Generator generator(points, rules);
  Result result{generator.count, {}};
  for (const Input& input : inputs) result.shapes.push_back(generator.run(input));
  return result;
}

}  // namespace varimesh::plain
