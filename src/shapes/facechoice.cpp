// Which of the faces inserted into a set stay.
//
// A face is left out when one that was inserted before, and has stayed, contains it. Faces are not
// taken in the order in which they were inserted, but by number of corners, quadrangles first, and
// within one number in octree order. That comes to the same: a face can only be contained by one
// with more corners, about which all is decided by then, or by an equal one, and of faces equal to
// each other the one inserted first that no bigger face contains is the one to stay.
#include <algorithm>

#include "shapes/faceset.h"

namespace varimesh {
namespace {

CoordId getLeastCorner(const Corners& corners) {
  return *std::min_element(corners.begin(), corners.end());  // empty slots are greater
}

}  // namespace

void FaceSet::finish() {
  const std::vector<ShapeId> choice = orderCandidates();
  const std::size_t candidateCount = candidates_.corners.size();
  const std::size_t pointCount = coordSet.getOctreeCoords().size();
  faces_.reserve(candidateCount);
  sequences_.reserve(candidateCount);
  std::size_t i = 0;
  int refCount = -1;  // the faces that refs_ was built for
  for (int n = 4; n >= 2; --n) {
    const auto firstOfSize = static_cast<ShapeId>(setCount);
    for (; i < candidateCount; ++i) {
      const ShapeId candidate = choice.empty() ? static_cast<ShapeId>(i) : choice[i];
      if (countCorners(candidates_.corners[candidate]) != n) break;
      if (firstOfSize > 0 && refCount < static_cast<int>(firstOfSize)) {
        refs_.build(pointCount, faces_, sequences_);
        refCount = static_cast<int>(firstOfSize);
      }
      insertIfNew(candidate, firstOfSize);
    }
    index_.reset();  // it serves for faces of one size
  }
  candidates_ = {{}, {}, AttributeLists(attributes, 4)};
  if (refCount < polygonCount && coordSet.isWithLevels()) {
    refs_.build(pointCount, faces_, sequences_);
  }
  numberFaces();
  ShapeSet::finish();
}

// Whether most faces lie far from the one before, as in a mesh whose faces come in no order.
// Meshes that were made row by row are as near as can be, and sorting them would only cost time.
bool FaceSet::isScattered() const {
  constexpr CoordId far = 1024;  // points; that many with their faces fit into a cache
  std::size_t jumps = 0;
  CoordId before = 0;
  for (const Corners& corners : candidates_.corners) {
    const CoordId least = getLeastCorner(corners);
    jumps += std::max(least, before) - std::min(least, before) > far ? 1 : 0;
    before = least;
  }
  return jumps > candidates_.corners.size() / 4;
}

// The candidates in the order in which they are decided on; empty when that is their own order.
// Later levels inherit the octree order of the first, more or less.
std::vector<ShapeId> FaceSet::orderCandidates() const {
  const auto& corners = candidates_.corners;
  const bool isByLeastCorner = lod == 0 && coordSet.isWithLevels() && isScattered();
  const auto getRank = [&](const Corners& c) -> std::size_t {
    const auto size = static_cast<std::size_t>(4 - countCorners(c));
    if (!isByLeastCorner) return size;
    return size * coordSet.getOctreeCoords().size() + getLeastCorner(c);
  };
  std::vector<ShapeId> choice;
  if (std::is_sorted(corners.begin(), corners.end(), [&](const Corners& a, const Corners& b) {
        return getRank(a) < getRank(b);
      })) {
    return choice;
  }
  std::vector<std::uint32_t> begins;
  for (const Corners& c : corners) {
    const std::size_t rank = getRank(c) + 1;
    if (begins.size() <= rank) begins.resize(rank + 1);
    ++begins[rank];
  }
  for (std::size_t i = 1; i < begins.size(); ++i) begins[i] += begins[i - 1];
  choice.resize(corners.size());
  for (ShapeId i = 0; i < corners.size(); ++i) choice[begins[getRank(corners[i])]++] = i;
  return choice;
}

void FaceSet::insertIfNew(ShapeId candidate, ShapeId firstOfSize) {
  const Corners& corners = candidates_.corners[candidate];
  const Sequence sequence = candidates_.sequences[candidate];
  if (firstOfSize > 0 && isWithinBigger(corners, sequence)) return;
  const ShapeId equal = findEqual(corners, firstOfSize);
  if (equal == noShape) {
    append(candidate);
  } else if (sequence < sequences_[equal]) {
    faces_[equal] = corners;
    sequences_[equal] = sequence;
    numbers.replace(equal, candidates_.numbers, candidate);
  }
}

// A face that contains all corners of a smaller one stands in the list of each of them, so the
// shortest list decides.
bool FaceSet::isWithinBigger(const Corners& corners, Sequence sequence) {
  CoordId rarest = corners[0];
  for (unsigned i = 1; i < 4 && corners[i] != noCoord; ++i) {
    if (refs_.getFaces(corners[i]).size() < refs_.getFaces(rarest).size()) rarest = corners[i];
  }
  const auto bigger = refs_.getFaces(rarest);
  if (bigger.size() <= longList) {
    return std::any_of(bigger.begin(), bigger.end(), [&](ShapeId face) {
      return sequences_[face] < sequence &&
             isEquivOrSubsetOf(corners, faces_[face], vertexOrdering_);
    });
  }
  FaceIndex& index = getIndex();
  if (index.isFirstTime(rarest)) {
    for (const ShapeId face : bigger) index.addBigger(faces_[face], sequences_[face]);
  }
  return index.isWithinBigger(corners, sequence);
}

// The face of this set with the same corners; noShape if there is none.
ShapeId FaceSet::findEqual(const Corners& corners, ShapeId firstOfSize) {
  const CoordId least = getLeastCorner(corners);
  ShapeId equal = noShape;
  std::size_t length = 0;
  forEachInList(least, [&](ShapeId face) {
    if (face < firstOfSize) return false;
    if (isEquivOrSubsetOf(corners, faces_[face], vertexOrdering_)) equal = face;
    return equal == noShape && ++length <= longList;
  });
  if (length <= longList) return equal;

  FaceIndex& index = getIndex();
  ShapeId& newest = index.getNewest(least);
  const ShapeId last = newest;
  forEachInList(least, [&](ShapeId face) {
    if (face < firstOfSize || face == last) return false;
    if (newest == last) newest = face;
    index.addEqual(faces_[face], face);
    return true;
  });
  return index.findEqual(corners);
}

FaceIndex& FaceSet::getIndex() {
  if (index_ == nullptr) index_ = std::make_unique<FaceIndex>(vertexOrdering_);
  return *index_;
}

void FaceSet::append(ShapeId candidate) {
  const Corners& corners = candidates_.corners[candidate];
  faces_.push_back(corners);
  sequences_.push_back(candidates_.sequences[candidate]);
  numbers.append(candidates_.numbers, candidate);
  const int n = countCorners(corners);
  for (unsigned i = 0; i < static_cast<unsigned>(n); ++i) coordSet.use(corners[i]);
  linkNewest(getLeastCorner(corners));
  ++setCount;
  if (n == 2) {
    ++lineCount;
  } else {
    ++polygonCount;
    ++(n == 4 ? quadCount : triCount);
  }
}

// Replaces the sequence numbers by places: 0, 1, 2 and so on, without gaps.
void FaceSet::numberFaces() {
  if (!std::is_sorted(sequences_.begin(), sequences_.end())) {
    std::vector<ShapeId> places(*std::max_element(sequences_.begin(), sequences_.end()) + 1,
                                noShape);
    for (ShapeId face = 0; face < faces_.size(); ++face) places[sequences_[face]] = face;
    order.reserve(faces_.size());
    for (const ShapeId face : places) {
      if (face != noShape) order.push_back(face);
    }
  }
  for (Sequence place = 0; place < faces_.size(); ++place) {
    sequences_[order.empty() ? place : order[place]] = place;
  }
}

}  // namespace varimesh
