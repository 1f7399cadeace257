#include "lod/octreecoordset.h"

#include <algorithm>
#include <numeric>

namespace varimesh {
namespace {

// Where a cell is cut in two on one axis. Below the upper bound whenever the bounds differ, so that
// a cell of two neighbouring floats separates them; hence at most some 300 cuts exhaust the range
// of single precision, which bounds the depth of the octree and of the recursion that builds it.
float cut(float low, float high) {
  const float centre = middle(low, high);
  return centre >= high ? low : centre;
}

// The depth of the smallest cell within `box` that holds both of two different points.
std::uint16_t calcSplit(const Coord& a, const Coord& b, Bounds box) {
  for (std::uint16_t depth = 0;; ++depth) {
    bool apart = false;
    const auto descend = [&](float& low, float& high, float p, float q) {
      const float centre = cut(low, high);
      apart = apart || (p > centre) != (q > centre);
      (p > centre ? low : high) = centre;
    };
    descend(box.minX, box.maxX, a.x, b.x);
    descend(box.minY, box.maxY, a.y, b.y);
    descend(box.minZ, box.maxZ, a.z, b.z);
    if (apart) return depth;
  }
}

}  // namespace

float OctreeCoordSet::weightAlgErrorArea = 8.0F;
float OctreeCoordSet::weightAlgErrorVolume = 1.0F;
float OctreeCoordSet::weightAlgWeightedMean = 0.0F;

void OctreeCoordSet::orderPoints() {
  std::vector<OctreePoint> points(records.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    points[i] = {records[i].x, records[i].y, records[i].z, static_cast<Reference>(i)};
  }
  splits_.assign(points.size(), 0);
  std::vector<OctreePoint> scratch(points.size());
  insertOctree(points, 0, bounds, 0, scratch);
  order_.resize(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) order_[i] = points[i].reference;
}

// Sorts the points of one cell, which stand at `offset` of the whole order, by the octants of its
// halves and goes on with each of them. The order of equal octants does not matter: all points
// differ, so in the end every point is alone in its cell.
void OctreeCoordSet::insertOctree(std::span<OctreePoint> points, std::size_t offset,
                                  const Bounds& box, int depth, std::vector<OctreePoint>& scratch) {
  if (points.size() < 2) return;
  const float x = cut(box.minX, box.maxX);
  const float y = cut(box.minY, box.maxY);
  const float z = cut(box.minZ, box.maxZ);
  // A coordinate on the cutting plane belongs to the lower half.
  const auto getOctant = [&](const OctreePoint& p) {
    return static_cast<unsigned>(p.x > x) << 2U | static_cast<unsigned>(p.y > y) << 1U |
           static_cast<unsigned>(p.z > z);
  };

  std::array<std::size_t, 8> ends{};
  for (const OctreePoint& p : points) ++ends[getOctant(p)];
  if (*std::max_element(ends.begin(), ends.end()) < points.size()) {
    std::array<std::size_t, 8> places{};
    std::exclusive_scan(ends.begin(), ends.end(), places.begin(), std::size_t{0});
    for (const OctreePoint& p : points) scratch[places[getOctant(p)]++] = p;
    std::copy_n(scratch.begin(), points.size(), points.begin());
  }
  std::inclusive_scan(ends.begin(), ends.end(), ends.begin());

  std::size_t begin = 0;
  for (unsigned octant = 0; octant < 8; ++octant) {
    const std::size_t end = ends[octant];
    if (begin == end) continue;
    if (begin > 0) splits_[offset + begin] = static_cast<std::uint16_t>(depth);
    Bounds half = box;
    ((octant & 4U) != 0 ? half.minX : half.maxX) = x;
    ((octant & 2U) != 0 ? half.minY : half.maxY) = y;
    ((octant & 1U) != 0 ? half.minZ : half.maxZ) = z;
    insertOctree(points.subspan(begin, end - begin), offset + begin, half, depth + 1, scratch);
    begin = end;
  }
}

// A point is a leaf right below the smallest cell that it shares with another point.
std::uint16_t OctreeCoordSet::getPointDepth(std::size_t rank) const {
  if (order_.size() == 1) return 0;
  const int before = rank > 0 ? splits_[rank] : 0;
  const int behind = rank + 1 < order_.size() ? splits_[rank + 1] : 0;
  return static_cast<std::uint16_t>(std::max(before, behind) + 1);
}

std::uint16_t OctreeCoordSet::getSplit(std::size_t previousRank, std::size_t rank) const {
  constexpr std::size_t shortWalk = 32;
  if (rank - previousRank > shortWalk) {
    return calcSplit(records[order_[previousRank]], records[order_[rank]], bounds);
  }
  const auto first = splits_.begin() + static_cast<std::ptrdiff_t>(previousRank) + 1;
  return *std::min_element(first, splits_.begin() + static_cast<std::ptrdiff_t>(rank) + 1);
}

void OctreeCoordSet::beginShape(std::span<const int> positions, bool withLevels) {
  endShape();
  isWithLevels_ = withLevels;
  localIds_.resize(records.size(), noCoord);
  usedPoints_.reserve(std::min(positions.size(), records.size()));
  for (const int position : positions) {
    if (position < 0 || position > getMaxIndex()) continue;
    const Reference point = getIndex(position);
    if (localIds_[point] != noCoord) continue;
    localIds_[point] = 0;
    usedPoints_.push_back(point);
  }
  coords_.reserve(usedPoints_.size());
  if (withLevels) {
    sortUsedPoints();
  } else {
    for (const Reference point : usedPoints_) coords_.emplace_back(records[point]);
  }
  for (std::size_t i = 0; i < usedPoints_.size(); ++i) {
    localIds_[usedPoints_[i]] = static_cast<CoordId>(i);
  }
}

// Puts the used points into octree order: by a walk over all points of the node when the shape uses
// a good part of them, else by sorting.
void OctreeCoordSet::sortUsedPoints() {
  constexpr std::size_t fewOf = 16;
  if (order_.empty() && !records.empty()) orderPoints();
  std::vector<std::uint32_t> usedRanks;
  usedRanks.reserve(usedPoints_.size());
  if (usedPoints_.size() >= records.size() / fewOf) {
    for (std::size_t rank = 0; rank < order_.size(); ++rank) {
      if (localIds_[order_[rank]] != noCoord) usedRanks.push_back(static_cast<std::uint32_t>(rank));
    }
  } else {
    if (ranks_.empty()) {
      ranks_.resize(order_.size());
      for (std::size_t rank = 0; rank < order_.size(); ++rank) {
        ranks_[order_[rank]] = static_cast<std::uint32_t>(rank);
      }
    }
    for (const Reference point : usedPoints_) usedRanks.push_back(ranks_[point]);
    std::sort(usedRanks.begin(), usedRanks.end());
  }
  for (std::size_t i = 0; i < usedRanks.size(); ++i) {
    const std::size_t rank = usedRanks[i];
    usedPoints_[i] = order_[rank];
    OctreeCoord& coord = coords_.emplace_back(records[usedPoints_[i]]);
    coord.depth = getPointDepth(rank);
    coord.split = i > 0 ? getSplit(usedRanks[i - 1], rank) : std::uint16_t{0};
  }
}

void OctreeCoordSet::endShape() {
  for (const Reference point : usedPoints_) localIds_[point] = noCoord;
  usedPoints_.clear();
  coords_.clear();
  previousCoords_.clear();
  represents_.clear();
  selecteds_.clear();
  cells_.clear();
  usedCount_ = 0;
  currentLOD = 0;
}

}  // namespace varimesh
