// Which of the faces inserted into a set stay.
//
// A face is left out when one that was inserted before, and has stayed, contains it. Faces are not
// taken in the order in which they were inserted, but by number of corners, quadrangles first, and
// within one number in any order that is good for the cache. That comes to the same: a face can
// only be contained by one with more corners, about which all is decided by then, or by an equal
// one, and of faces equal to each other the one inserted first that no bigger face contains is the
// one to stay. Whether a bigger face contains it is asked of each for itself, since for a triangle
// within a quadrangle that depends on its first corner; whether two faces are equal does not.
#include <algorithm>
#include <span>
#include <utility>

#include "shapes/faceset.h"

namespace varimesh {
namespace {

CoordId getLeastCorner(const Corners& corners) {
  return *std::min_element(corners.begin(), corners.end());  // empty slots are greater
}

// Equal for equal faces, and different for most others.
CoordId sumCorners(const Corners& corners) {
  return corners[0] + corners[1] + corners[2] + corners[3];
}

}  // namespace

void FaceSet::finish() {
  sortCandidates();
  const std::size_t pointCount = coordSet.getOctreeCoords().size();
  const auto candidateCount = static_cast<ShapeId>(faces_.size());
  reserveList(candidateCount);
  ShapeId candidate = 0;
  int refCount = -1;  // the faces that refs_ was built for
  const auto buildRefs = [&] {
    const auto chosen = static_cast<std::size_t>(setCount);
    refs_.build(pointCount, std::span(faces_).first(chosen), std::span(sequences_).first(chosen));
    refCount = setCount;
  };
  for (int n = 4; n >= 2; --n) {
    const auto firstOfSize = static_cast<ShapeId>(setCount);
    const auto isOfSize = [&] {
      return candidate < candidateCount && countCorners(faces_[candidate]) == n;
    };
    if (firstOfSize > 0 && isOfSize()) buildRefs();
    for (; isOfSize(); ++candidate) insertIfNew(candidate, firstOfSize);
    index_.reset();  // it serves for faces of one size
  }
  const auto chosen = static_cast<ShapeId>(setCount);
  faces_.resize(chosen);
  sequences_.resize(chosen);
  numbers.resize(chosen);
  if (refCount < polygonCount && coordSet.isWithLevels()) buildRefs();
  numberFaces();
  ShapeSet::finish();
}

// Whether many faces lie far from the one before, as in a mesh whose faces come in no order.
// Meshes that were made row by row are as near as can be, and sorting them would only cost time.
bool FaceSet::isScattered() const {
  constexpr std::size_t few = 64;  // all of them near
  if (faces_.size() < few) return false;
  const auto far = static_cast<CoordId>(coordSet.getOctreeCoords().size() / 16);
  std::size_t jumps = 0;
  CoordId before = 0;
  for (const Corners& corners : faces_) {
    const CoordId least = getLeastCorner(corners);
    jumps += std::max(least, before) - std::min(least, before) > far ? 1 : 0;
    before = least;
  }
  return jumps > faces_.size() / 4;
}

// Puts the candidates into the order in which they are decided on. Later levels inherit the octree
// order of the first, more or less.
void FaceSet::sortCandidates() {
  const bool isByLeastCorner = lod == 0 && coordSet.isWithLevels() && isScattered();
  const auto getRank = [&](const Corners& c) -> std::size_t {
    const auto size = static_cast<std::size_t>(4 - countCorners(c));
    if (!isByLeastCorner) return size;
    return size * coordSet.getOctreeCoords().size() + getLeastCorner(c);
  };
  if (std::is_sorted(faces_.begin(), faces_.end(),
                     [&](const Corners& a, const Corners& b) { return getRank(a) < getRank(b); })) {
    return;
  }
  std::vector<std::uint32_t> begins;
  for (const Corners& corners : faces_) {
    const std::size_t rank = getRank(corners) + 1;
    if (begins.size() <= rank) begins.resize(rank + 1);
    ++begins[rank];
  }
  for (std::size_t i = 1; i < begins.size(); ++i) begins[i] += begins[i - 1];
  std::vector<ShapeId> sorted(faces_.size());
  for (ShapeId i = 0; i < faces_.size(); ++i) sorted[begins[getRank(faces_[i])]++] = i;

  std::vector<Corners> faces;
  std::vector<Sequence> sequences;
  AttributeLists sortedNumbers(attributes);
  faces.reserve(faces_.size());
  sequences.reserve(faces_.size());
  for (const ShapeId candidate : sorted) {
    faces.push_back(faces_[candidate]);
    sequences.push_back(sequences_[candidate]);
    sortedNumbers.append(numbers, candidate);
  }
  faces_ = std::move(faces);
  sequences_ = std::move(sequences);
  numbers = std::move(sortedNumbers);
}

// The faces chosen so far stand in front of the candidates that are left.
void FaceSet::insertIfNew(ShapeId candidate, ShapeId firstOfSize) {
  const Corners corners = faces_[candidate];
  const Sequence sequence = sequences_[candidate];
  if (firstOfSize > 0 && isWithinBigger(corners, sequence)) return;
  const ShapeId equal = findEqual(corners, firstOfSize);
  if (equal != noShape && sequences_[equal] < sequence) return;
  const auto place = equal != noShape ? equal : static_cast<ShapeId>(setCount);
  faces_[place] = corners;
  sequences_[place] = sequence;
  numbers.move(candidate, place);
  if (equal != noShape) return;

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

// A face that contains all corners of a smaller one stands in the list of each of them, so the
// shortest list decides.
bool FaceSet::isWithinBigger(const Corners& corners, Sequence sequence) {
  CoordId rarest = corners[0];
  for (unsigned i = 1; i < 4 && corners[i] != noCoord; ++i) {
    if (refs_.getFaces(corners[i]).size() < refs_.getFaces(rarest).size()) rarest = corners[i];
  }
  const auto bigger = refs_.getFaces(rarest);
  // To add a list to the index costs as much as some hundred walks through it.
  constexpr unsigned manyQuestions = 256;
  const unsigned question = bigger.size() <= longList ? 0 : getIndex().countQuestion(rarest);
  if (question <= manyQuestions) {
    return std::any_of(bigger.begin(), bigger.end(), [&](ShapeId face) {
      return isEquivOrSubsetOf(corners, faces_[face], vertexOrdering_) &&
             sequences_[face] < sequence;
    });
  }
  FaceIndex& index = getIndex();
  if (question == manyQuestions + 1) {
    for (const ShapeId face : bigger) index.addBigger(faces_[face], sequences_[face]);
  }
  return index.isWithinBigger(corners, sequence);
}

// The face of this set with the same corners; noShape if there is none. Faces of other sizes, which
// stand behind those of this size in the lists, are not looked at.
ShapeId FaceSet::findEqual(const Corners& corners, ShapeId firstOfSize) {
  const CoordId least = getLeastCorner(corners);
  ShapeId equal = noShape;
  std::size_t length = 0;
  const CoordId sum = sumCorners(corners);
  forEachInList(least, [&](ShapeId face) {
    if (face < firstOfSize) return false;
    if (sumCorners(faces_[face]) == sum &&
        isEquivOrSubsetOf(corners, faces_[face], vertexOrdering_)) {
      equal = face;
    }
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
