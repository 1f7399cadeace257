// What a change of points does to the faces around them.
#include <algorithm>
#include <cmath>
#include <vector>

#include "shapes/faceset.h"

namespace varimesh {
namespace {

// A polygon at a cell that is about to collapse: its corners as they are, and which of them would
// move with the cell.
struct AffectedFace {
  std::array<CoordId, 4> coords;
  std::array<Vec, 4> points;
  std::array<bool, 4> moves;
  std::size_t count;
  double area;
  // The corner from which its one or two triangles are spanned, and that corner's own triangle.
  std::size_t base;
  Corner baseCorner;
  std::array<bool, 2> triangleMoves;

  AffectedFace(std::span<const CoordId> corners, const OctreeCoordSet& coordSet,
               const CollapsingCell& cell)
      : count(corners.size()) {
    for (std::size_t i = 0; i < count; ++i) {
      coords[i] = corners[i];
      points[i] = coordSet.getOctreeCoord(corners[i]).getPosition();
      moves[i] = cell.contains(corners[i]);
    }
    if (count == 3) {
      base = 0;
      baseCorner = calcCorners({points.data(), 3})[0];
      area = baseCorner.area;
      triangleMoves = {true, false};
    } else {
      const Quadrangle quadrangle(points);
      base = quadrangle.diagonal == 0 ? 0 : 1;
      baseCorner = quadrangle.corners[base];
      area = quadrangle.getArea();
      const auto moved = [&](std::size_t i) { return moves[(base + i) % 4]; };
      triangleMoves = {moved(0) || moved(1) || moved(2), moved(0) || moved(2) || moved(3)};
    }
  }

  // The signed change of the area when the cell's points move to `target`.
  [[nodiscard]] double calcErrorArea(const Vec& target) const {
    std::array<Vec, 4> moved;
    std::size_t n = 0;
    // Corners that come to lie on one point next to each other merge.
    for (std::size_t i = 0; i < count; ++i) {
      if (moves[i] && moves[(i + 1) % count]) continue;
      moved[n++] = moves[i] ? target : points[i];
    }
    if (n < 3) return -area;
    if (n == 3) return double{calcCorners({moved.data(), 3})[0].area} - area;
    return Quadrangle(moved).getArea() - area;
  }

  // The volume that the face sweeps when the cell's points move to `target`: for each of its
  // triangles that moves, the tetrahedron over the base corner's triangle.
  [[nodiscard]] double calcErrorVolume(const Vec& target) const {
    const Vec offset = target - points[base];
    const auto volume =
        static_cast<float>(std::fabs(dot(offset, baseCorner.normal) * baseCorner.area / 3));
    return double{triangleMoves[0] ? volume : 0} + (triangleMoves[1] ? volume : 0);
  }
};

}  // namespace

void FaceSet::calcErrors(const CollapsingCell& cell, CellErrors& errors) const {
  const auto isPoint = [&](CoordId coord) {
    return std::find(cell.points.begin(), cell.points.end(), coord) != cell.points.end();
  };
  for (const CoordId point : cell.points) {
    for (std::uint32_t i = coordSet.getOctreeCoord(point).shapeRefs; i != noShapeRef;) {
      const ShapeRef& ref = coordSet.getShapeRef(i);
      i = ref.next;
      const auto coords = getCoords(ref.shape);
      if (coords.size() < 3) continue;
      // Met before, at a point of the cell in an earlier octant?
      if (std::any_of(coords.begin(), coords.end(), [&](CoordId coord) {
            return coord < point && coord >= cell.first && isPoint(coord);
          })) {
        continue;
      }
      const AffectedFace face(coords, coordSet, cell);
      for (std::size_t k = 0; k < cell.candidates.size(); ++k) {
        errors.area[k] += face.calcErrorArea(cell.candidates[k]);
        errors.volume[k] += face.calcErrorVolume(cell.candidates[k]);
      }
    }
  }
}

}  // namespace varimesh
