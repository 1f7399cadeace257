// The making of levels: which cells of the octree collapse, and into which of their points.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <numeric>

#include "lod/octreecoordset.h"

namespace varimesh {
namespace {

// How many used points of n a level must at least remove. Saturated; not-a-number counts as 0.
std::int64_t getLeastDifference(int n) {
  const double share = double{CoordSet::minDiff} * n;
  if (std::isnan(share)) return 1;
  constexpr double limit = std::numeric_limits<int>::max();
  const auto difference = static_cast<std::int64_t>(std::clamp(share, -limit, limit));
  return difference == 0 ? 1 : difference;
}

// Narrows an error; what is not finite counts as the greatest.
template <class Number>
float narrowError(Number error) {
  constexpr float largest = std::numeric_limits<float>::max();
  return error <= largest ? static_cast<float>(error) : largest;
}

int getTarget(int n) {
  const std::int64_t target = n - getLeastDifference(n);
  return static_cast<int>(std::clamp<std::int64_t>(target, 1, std::numeric_limits<int>::max()));
}

}  // namespace

void OctreeCoordSet::generateNextLOD(const Shape& shapes) {
  const int depth = calcOctreeDepthOfUsedPoints();
  if (depth == 0) return;
  collectCells();

  // Whole layers first: within them the order of collapsing makes no difference. Only the layer in
  // which the level ends has to be worked through in the order of the greatest cells.
  int left = static_cast<int>(cells_.size());  // used points so far
  const int target = getTarget(left);
  int layer = depth;
  do {
    const int removed = countRemoved(layer);
    if (layer < depth && left - removed <= target) {
      generateOctreeLODs(0, cells_.size(), 0, layer, left, target, shapes);
      packCells();
      break;
    }
    collapseLayer(layer, shapes);
    left -= removed;
    --layer;
  } while (left > target && layer > 0);

  rootDepth_ = 1;
  for (const Cell& cell : cells_) rootDepth_ = std::max(rootDepth_, cell.depth + 1);
  takeCells();
  ++currentLOD;
}

// The depth of the deepest used point, 0 when it is the root or when there is none.
int OctreeCoordSet::calcOctreeDepthOfUsedPoints() const {
  int depth = 0;
  for (const OctreeCoord& coord : coords_) {
    if (coord.isUsed) depth = std::max<int>(depth, coord.depth);
  }
  return depth;
}

// Starts a level: every used point is a cell of its own. Unused points are left out.
void OctreeCoordSet::collectCells() {
  cells_.clear();
  cells_.reserve(static_cast<std::size_t>(usedCount_));
  std::uint16_t split = std::numeric_limits<std::uint16_t>::max();
  for (CoordId i = 0; i < coords_.size(); ++i) {
    const OctreeCoord& coord = coords_[i];
    split = std::min(split, coord.split);
    if (!coord.isUsed) continue;
    cells_.push_back({i, i + 1, i, 1, coord.depth, split, coord.lod, coord.selectedLod});
    split = std::numeric_limits<std::uint16_t>::max();
  }
}

// How many points fewer there are when the deepest layer, whose points have that depth, is gone.
int OctreeCoordSet::countRemoved(int depth) const {
  int removed = 0;
  for (std::size_t i = 1; i < cells_.size(); ++i) {
    if (cells_[i].depth == depth && cells_[i].split + 1 >= depth) ++removed;
  }
  return removed;
}

// Collapses all cells whose children have that depth, the deepest.
void OctreeCoordSet::collapseLayer(int depth, const Shape& shapes) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < cells_.size();) {
    if (cells_[i].depth < depth) {
      cells_[kept++] = cells_[i++];
      continue;
    }
    std::size_t end = i + 1;
    while (end < cells_.size() && cells_[end].split + 1 >= depth) ++end;
    cells_[kept++] = collapse({cells_.data() + i, end - i}, shapes);
    i = end;
  }
  cells_.resize(kept);
}

// Collapses cells of the layer below one cell, which has the given depth and holds the cells from
// first to last, until no more than `target` points are left: always within the child that holds
// the most points of those that still reach down to the layer, the earlier octant among equals.
// The children stay where they are: the first becomes the collapsed cell, the others are marked
// as gone by a count of 0. Recursion is bounded by the depth of the octree.
void OctreeCoordSet::generateOctreeLODs(std::size_t first, std::size_t last, int depth, int layer,
                                        int& left, int target, const Shape& shapes) {
  if (depth + 1 == layer) {
    const Cell cell = collapse({cells_.data() + first, last - first}, shapes);
    left -= static_cast<int>(last - first) - 1;
    cells_[first] = cell;
    for (std::size_t i = first + 1; i < last; ++i) cells_[i].usedCount = 0;
    return;
  }
  struct Child {
    std::size_t first, last;
    std::uint64_t usedCount;
  };
  std::array<Child, 8> children;
  std::size_t childCount = 0;
  for (std::size_t begin = first; begin < last;) {
    std::size_t end = begin;
    std::uint64_t used = 0;
    bool isDeep = false;
    do {
      used += cells_[end].usedCount;
      isDeep = isDeep || cells_[end].depth == layer;
      ++end;
    } while (end < last && cells_[end].split > depth);
    if (isDeep) children[childCount++] = {begin, end, used};
    begin = end;
  }
  std::stable_sort(children.begin(), children.begin() + static_cast<std::ptrdiff_t>(childCount),
                   [](const Child& a, const Child& b) { return a.usedCount > b.usedCount; });
  for (std::size_t i = 0; i < childCount && left > target; ++i) {
    generateOctreeLODs(children[i].first, children[i].last, depth + 1, layer, left, target, shapes);
  }
}

void OctreeCoordSet::packCells() {
  std::erase_if(cells_, [](const Cell& cell) { return cell.usedCount == 0; });
}

OctreeCoordSet::Cell OctreeCoordSet::collapse(std::span<const Cell> children,
                                              const Shape& shapes) const {
  const Cell& chosen = children[selectOctreeRepresent(children, shapes)];
  Cell cell = children.front();
  cell.last = children.back().last;
  cell.selected = chosen.selected;
  cell.usedCount =
      std::accumulate(children.begin(), children.end(), std::uint32_t{0},
                      [](std::uint32_t sum, const Cell& c) { return sum + c.usedCount; });
  --cell.depth;
  cell.lod = static_cast<std::int16_t>(currentLOD + 1);
  cell.selectedLod = chosen.lod;
  return cell;
}

// The position of the child that is to represent its cell.
std::size_t OctreeCoordSet::selectOctreeRepresent(std::span<const Cell> children,
                                                  const Shape& shapes) const {
  if (children.size() == 1) return 0;
  if (shapeType != 1) {
    const Errors errors = calcWeightedMeanErrors(children);
    return static_cast<std::size_t>(
        std::min_element(errors.begin(),
                         errors.begin() + static_cast<std::ptrdiff_t>(children.size())) -
        errors.begin());
  }

  Errors totals{};
  const auto addErrors = [&](const Errors& errors, float weight) {
    for (std::size_t i = 0; i < children.size(); ++i) {
      totals[i] = static_cast<float>(totals[i] + double{weight} * errors[i]);
    }
  };
  if (weightAlgErrorArea > 0 || weightAlgErrorVolume > 0) {
    std::array<CoordId, 8> points;
    std::array<Vec, 8> candidates;
    std::size_t pointCount = 0;
    for (std::size_t i = 0; i < children.size(); ++i) {
      candidates[i] = coords_[children[i].selected].getPosition();
      if (children[i].lod <= currentLOD) points[pointCount++] = children[i].selected;
    }
    CellErrors sums;
    shapes.calcErrors({children.front().first,
                       children.back().last,
                       {points.data(), pointCount},
                       {candidates.data(), children.size()}},
                      sums);
    const auto addSums = [&](const std::array<long double, 8>& sum, float weight) {
      if (!(weight > 0)) return;
      Errors errors;
      for (std::size_t i = 0; i < children.size(); ++i) {
        errors[i] = narrowError(std::fabs(sum[i]));
      }
      normalizeErrors({errors.data(), children.size()});
      addErrors(errors, weight);
    };
    addSums(sums.area, weightAlgErrorArea);
    addSums(sums.volume, weightAlgErrorVolume);
  }
  if (weightAlgWeightedMean > 0) addErrors(calcWeightedMeanErrors(children), weightAlgWeightedMean);
  return static_cast<std::size_t>(
      std::min_element(totals.begin(),
                       totals.begin() + static_cast<std::ptrdiff_t>(children.size())) -
      totals.begin());
}

// The normalised distances of the children from the mean of the points that they hold.
OctreeCoordSet::Errors OctreeCoordSet::calcWeightedMeanErrors(
    std::span<const Cell> children) const {
  double x = 0;
  double y = 0;
  double z = 0;
  double used = 0;
  for (const Cell& child : children) {
    const OctreeCoord& coord = coords_[child.selected];
    x += double{coord.x} * child.usedCount;
    y += double{coord.y} * child.usedCount;
    z += double{coord.z} * child.usedCount;
    used += child.usedCount;
  }
  Errors errors{};
  for (std::size_t i = 0; i < children.size(); ++i) {
    const OctreeCoord& coord = coords_[children[i].selected];
    const double dx = x / used - coord.x;
    const double dy = y / used - coord.y;
    const double dz = z / used - coord.z;
    errors[i] = narrowError(std::sqrt(dx * dx + dy * dy + dz * dz));
  }
  normalizeErrors({errors.data(), children.size()});
  return errors;
}

// Scales errors to at most 1, so that measures of different units can be added.
void OctreeCoordSet::normalizeErrors(std::span<float> errors) {
  const float greatest = *std::max_element(errors.begin(), errors.end());
  if (!(greatest > 0)) return;
  for (float& error : errors) {
    if (error > 0) error /= greatest;
  }
}

// Makes the cells the points of the new level.
void OctreeCoordSet::takeCells() {
  std::swap(previousCoords_, coords_);
  represents_.assign(previousCoords_.size(), noCoord);
  selecteds_.resize(cells_.size());
  coords_.resize(cells_.size());
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    const Cell& cell = cells_[i];
    OctreeCoord& coord = coords_[i];
    coord = OctreeCoord(static_cast<const Coord&>(previousCoords_[cell.selected]));
    coord.lod = cell.lod;
    coord.selectedLod = cell.selectedLod;
    coord.depth = cell.depth;
    coord.split = cell.split;
    selecteds_[i] = cell.selected;
    std::fill(represents_.begin() + cell.first, represents_.begin() + cell.last,
              static_cast<CoordId>(i));
  }
  usedCount_ = 0;
}

CoordId OctreeCoordSet::getSelected(CoordId previous) const {
  const CoordId selected = selecteds_[represents_[previous]];
  const int lod = previousCoords_[previous].lod;
  const OctreeCoord& candidate = previousCoords_[selected];
  return candidate.lod >= lod && candidate.selectedLod < lod ? selected : noCoord;
}

float OctreeCoordSet::getRange() const {
  if (isEmpty()) return 0.0F;
  const auto angleFactor = static_cast<float>(2.0 * std::tan(double{cameraHeightAngle} / 2.0));
  if (angleFactor == 0.0F || !std::isfinite(angleFactor)) {
    std::fprintf(stderr, "error: illegal cameraheightangle >%f<\n", double{cameraHeightAngle});
    std::exit(EXIT_FAILURE);
  }
  const auto rangeFactor = static_cast<float>(double{angleFactor} * errorRange / 100.0);
  if (rangeFactor == 0.0F || !std::isfinite(rangeFactor)) {
    std::fprintf(stderr,
                 "error: can't calculate lod-rangefactor\n"
                 "       with heightAngle >%f< and errorrange >%f<\n",
                 double{cameraHeightAngle}, double{errorRange});
    std::exit(EXIT_FAILURE);
  }
  const double diagonal =
      std::sqrt(3.0) * bounds.getMaxElongation() / std::ldexp(1.0, rootDepth_ - 1);
  constexpr double largest = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(diagonal / rangeFactor, -largest, largest));
}

}  // namespace varimesh
