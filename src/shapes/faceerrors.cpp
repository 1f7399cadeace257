// What a change of points does to the faces around them. This is where level generation spends its
// time, so triangles, of which there are most, are worked on in batches: the loops over a batch
// have no branches and are compiled to instructions that do several triangles at once. On a mesh of
// a million triangles that takes RATIO of the time of the plain road. The results are those of
// calcCornerArea and calcCornerNormal, to the last bit.
#include <algorithm>
#include <cmath>

#include "shapes/faceset.h"

namespace varimesh {
namespace {

// The volume of the tetrahedron over a triangle of that area and normal.
double calcVolume(const Vec& offset, const Vec& normal, float area) {
  return static_cast<float>(std::fabs(dot(offset, normal) * area / 3));
}

// Triangles with at least one corner in a cell about to be collapsed.
class TriangleBatch {
 public:
  explicit TriangleBatch(const CollapsingCell& cell) : cell_(cell) {}

  [[nodiscard]] bool isFull() const { return size_ == capacity; }
  void add(std::span<const CoordId> coords, const OctreeCoordSet& coordSet) {
    int moveCount = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      const OctreeCoord& coord = coordSet.getOctreeCoord(coords[i]);
      corners_[i].set(size_, coord.getPosition());
      moves_[i][size_] = cell_.contains(coords[i]) ? 1 : 0;
      if (moves_[i][size_] == 0) continue;
      ++moveCount;
      moving_.set(size_, coord.getPosition());
    }
    merges_[size_] = moveCount > 1 ? 1 : 0;
    ++size_;
  }
  // Adds what would happen to the triangles, in the order in which they came, and forgets them.
  void flush(CellErrors& errors) {
    if (size_ == 0) return;
    calcNormals();
    for (std::size_t k = 0; k < cell_.candidates.size(); ++k) {
      const Vec& target = cell_.candidates[k];
      calcVolumes(target);
      calcAreaChanges(target);
      long double area = errors.area[k];
      long double volume = errors.volume[k];
      for (std::size_t i = 0; i < size_; ++i) {
        area += areaChanges_[i];
        volume += volumes_[i];
      }
      errors.area[k] = area;
      errors.volume[k] = volume;
    }
    size_ = 0;
  }

 private:
  static constexpr std::size_t capacity = 32;
  template <class Number>
  using List = std::array<Number, capacity>;
  struct Vecs {
    List<float> x, y, z;

    void set(std::size_t i, const Vec& vec) {
      x[i] = vec.x;
      y[i] = vec.y;
      z[i] = vec.z;
    }
    [[nodiscard]] Vec get(std::size_t i) const { return {x[i], y[i], z[i]}; }
  };

  static float calcArea(const Vec& p0, const Vec& p1, const Vec& p2) {
    const Vec out = p1 - p0;
    const Vec in = p0 - p2;
    const double product = double{out.getLength()} * in.getLength();
    const double cosine = dot(out, in) / product;
    const double square = 1 - cosine * cosine;
    const auto area = static_cast<float>(std::sqrt(square < 0 ? 0.0 : square) * product / 2);
    return product == 0 ? 0.0F : area;
  }
  void calcNormals() {
    for (std::size_t i = 0; i < size_; ++i) {
      areas_[i] = calcArea(corners_[0].get(i), corners_[1].get(i), corners_[2].get(i));
    }
    for (std::size_t i = 0; i < size_; ++i) {
      const Vec a = corners_[1].get(i) - corners_[0].get(i);
      const Vec b = corners_[0].get(i) - corners_[2].get(i);
      const double x = double{a.y} * b.z - double{a.z} * b.y;
      const double y = double{a.z} * b.x - double{a.x} * b.z;
      const double z = double{a.x} * b.y - double{a.y} * b.x;
      const double length = std::sqrt(x * x + y * y + z * z);
      const double divisor = length == 0 ? 1.0 : length;
      normals_.x[i] = static_cast<float>(x / divisor);
      normals_.y[i] = static_cast<float>(y / divisor);
      normals_.z[i] = static_cast<float>(z / divisor);
    }
    for (std::size_t i = 0; i < size_; ++i) {
      if (normals_.get(i).isNullVector() == 0) continue;
      const std::array<Vec, 3> p = {corners_[0].get(i), corners_[1].get(i), corners_[2].get(i)};
      normals_.set(i, calcCornerNormal(Edge(p[0], p[1]), Edge(p[1], p[2])));
    }
  }
  void calcVolumes(const Vec& target) {
    for (std::size_t i = 0; i < size_; ++i) {
      volumes_[i] = calcVolume(target - corners_[0].get(i), normals_.get(i), areas_[i]);
    }
  }
  // Corners that move to one point merge; a corner that is the target stays where it is.
  void calcAreaChanges(const Vec& target) {
    const auto [x, y, z] = target;
    for (std::size_t i = 0; i < size_; ++i) {
      const auto getMoved = [&](std::size_t corner) {
        const Vec from = corners_[corner].get(i);
        const bool moves = moves_[corner][i] != 0;
        return Vec(moves ? x : from.x, moves ? y : from.y, moves ? z : from.z);
      };
      const double moved = calcArea(getMoved(0), getMoved(1), getMoved(2));
      const double area = areas_[i];
      const Vec moving = moving_.get(i);
      const bool stays = (moving.x == x) & (moving.y == y) & (moving.z == z);
      const double change = stays ? 0.0 : moved - area;
      areaChanges_[i] = merges_[i] != 0 ? -area : change;
    }
  }

  const CollapsingCell& cell_;
  std::size_t size_ = 0;
  std::array<Vecs, 3> corners_;
  std::array<List<int>, 3> moves_;  // whether the corner lies in the cell
  Vecs moving_;                     // one of those that do
  List<int> merges_;                // whether there are more of them
  List<float> areas_;
  Vecs normals_;
  List<double> volumes_, areaChanges_;  // for one target
};

void addQuadrangle(std::span<const CoordId> coords, const OctreeCoordSet& coordSet,
                   const CollapsingCell& cell, CellErrors& errors) {
  std::array<Vec, 4> points;
  std::array<bool, 4> moves;
  for (std::size_t i = 0; i < 4; ++i) {
    points[i] = coordSet.getOctreeCoord(coords[i]).getPosition();
    moves[i] = cell.contains(coords[i]);
  }
  const Quadrangle quadrangle(points);
  const double area = quadrangle.getArea();
  // The cut makes two triangles, both with the base corner.
  const std::size_t base = quadrangle.diagonal == 0 ? 0 : 1;
  const auto isMoved = [&](std::size_t i) { return moves[(base + i) % 4]; };
  const bool firstMoves = isMoved(0) || isMoved(1) || isMoved(2);
  const bool secondMoves = isMoved(0) || isMoved(2) || isMoved(3);

  for (std::size_t k = 0; k < cell.candidates.size(); ++k) {
    const Vec& target = cell.candidates[k];
    const double volume =
        calcVolume(target - points[base], quadrangle.normals[base], quadrangle.areas[base]);
    errors.volume[k] += (firstMoves ? volume : 0) + (secondMoves ? volume : 0);

    // Corners that come to lie on one point next to each other merge.
    std::array<Vec, 4> moved;
    std::size_t n = 0;
    for (std::size_t i = 0; i < 4; ++i) {
      if (moves[i] && moves[(i + 1) % 4]) continue;
      moved[n++] = moves[i] ? target : points[i];
    }
    double movedArea = 0;
    if (n == 4) {
      movedArea = Quadrangle(moved).getArea();
    } else if (n == 3) {
      movedArea = calcCornerArea(Edge(moved[2], moved[0]), Edge(moved[0], moved[1]));
    }
    errors.area[k] += movedArea - area;
  }
}

}  // namespace

void FaceSet::calcErrors(const CollapsingCell& cell, CellErrors& errors) const {
  const auto isPoint = [&](CoordId coord) {
    return std::find(cell.points.begin(), cell.points.end(), coord) != cell.points.end();
  };
  TriangleBatch triangles(cell);
  for (const CoordId point : cell.points) {
    for (const ShapeId face : refs_.getFaces(point)) {
      const auto coords = getCoords(face);
      // Met before, at a point of the cell in an earlier octant?
      if (std::any_of(coords.begin(), coords.end(), [&](CoordId coord) {
            return coord < point && coord >= cell.first && isPoint(coord);
          })) {
        continue;
      }
      if (coords.size() == 3) {
        if (triangles.isFull()) triangles.flush(errors);
        triangles.add(coords, coordSet);
      } else {
        triangles.flush(errors);
        addQuadrangle(coords, coordSet, cell, errors);
      }
    }
  }
  triangles.flush(errors);
}

}  // namespace varimesh
