// What a change of points does to the faces around them. This is where level generation spends its
// time, so triangles, of which there are most, have a road of their own on which nothing is
// computed twice; the results are those of the general rules.
#include <algorithm>
#include <cmath>

#include "shapes/faceset.h"

namespace varimesh {
namespace {

// The volume of the tetrahedron over a triangle of that area and normal.
double calcVolume(const Vec& offset, const Vec& normal, float area) {
  return static_cast<float>(std::fabs(dot(offset, normal) * area / 3));
}

void addTriangle(std::span<const CoordId> coords, const OctreeCoordSet& coordSet,
                 const CollapsingCell& cell, CellErrors& errors) {
  std::array<Vec, 3> points;
  std::size_t moving = 0;  // the corner that moves, when it is the only one
  int moveCount = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    points[i] = coordSet.getOctreeCoord(coords[i]).getPosition();
    if (!cell.contains(coords[i])) continue;
    moving = i;
    ++moveCount;
  }
  const Edge incoming(points[2], points[0]);
  const Edge outgoing(points[0], points[1]);
  const float area = calcCornerArea(incoming, outgoing);
  Vec normal = calcCornerNormal(incoming.vector, outgoing.vector);
  if (normal.isNullVector() != 0) normal = calcCornerNormal(outgoing.vector, points[2] - points[1]);

  for (std::size_t k = 0; k < cell.candidates.size(); ++k) {
    const Vec& target = cell.candidates[k];
    errors.volume[k] += calcVolume(target - points[0], normal, area);
    if (moveCount > 1) {
      errors.area[k] -= area;  // the corners merge
    } else if (target != points[moving]) {
      const Edge in = moving == 1   ? incoming
                      : moving == 0 ? Edge(points[2], target)
                                    : Edge(target, points[0]);
      const Edge out = moving == 2   ? outgoing
                       : moving == 0 ? Edge(target, points[1])
                                     : Edge(points[0], target);
      errors.area[k] += double{calcCornerArea(in, out)} - area;
    }
  }
}

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
  const float baseArea = quadrangle.getCornerArea(base);
  const auto isMoved = [&](std::size_t i) { return moves[(base + i) % 4]; };
  const bool firstMoves = isMoved(0) || isMoved(1) || isMoved(2);
  const bool secondMoves = isMoved(0) || isMoved(2) || isMoved(3);

  for (std::size_t k = 0; k < cell.candidates.size(); ++k) {
    const Vec& target = cell.candidates[k];
    const double volume = calcVolume(target - points[base], quadrangle.normals[base], baseArea);
    errors.volume[k] += (firstMoves ? volume : 0) + (secondMoves ? volume : 0);

    // Corners that come to lie on one point next to each other merge.
    std::array<Vec, 4> moved;
    std::size_t n = 0;
    for (std::size_t i = 0; i < 4; ++i) {
      if (moves[i] && moves[(i + 1) % 4]) continue;
      moved[n++] = moves[i] ? target : points[i];
    }
    double movedArea = 0;
    if (n == 4 && moved == points) {
      movedArea = area;
    } else if (n == 4) {
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
        addTriangle(coords, coordSet, cell, errors);
      } else {
        addQuadrangle(coords, coordSet, cell, errors);
      }
    }
  }
}

}  // namespace varimesh
