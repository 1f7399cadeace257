#include "shapes/faceindex.h"

#include <algorithm>

namespace varimesh {
namespace {

// The same face in one way of all the ways in which its corners can be listed.
Corners normalize(const Corners& corners, int vertexOrdering) {
  const auto n = countCorners(corners);
  Corners least = corners;
  Corners turned = corners;
  const auto turn = [&] {
    for (int i = 0; i < n; ++i) {
      std::rotate(turned.begin(), turned.begin() + 1, turned.begin() + n);
      least = std::min(least, turned);
    }
  };
  turn();
  if (vertexOrdering == 0) {
    std::reverse(turned.begin(), turned.begin() + n);
    turn();
  }
  return least;
}

}  // namespace

void FaceIndex::addEqual(const Corners& corners, ShapeId face) {
  equals_.try_emplace(normalize(corners, vertexOrdering_), face);
}

ShapeId FaceIndex::findEqual(const Corners& corners) const {
  const auto found = equals_.find(normalize(corners, vertexOrdering_));
  return found == equals_.end() ? noShape : found->second;
}

void FaceIndex::addPart(const Corners& part, Sequence sequence) {
  const auto [place, isNew] = parts_.try_emplace(part, sequence);
  if (!isNew) place->second = std::min(place->second, sequence);
}

// A triangle counts as part of a quadrangle only from the corner from which it runs along it, so
// triangles are not normalised here.
void FaceIndex::addBigger(const Corners& corners, Sequence sequence) {
  const auto n = static_cast<unsigned>(countCorners(corners));
  for (unsigned i = 0; i < n; ++i) {
    for (unsigned k = 0; k < i; ++k) {
      addPart(normalize({corners[i], corners[k], noCoord, noCoord}, 0), sequence);
    }
    if (n < 4) continue;
    const Corners part = {corners[i], corners[(i + 1) % 4], corners[(i + 2) % 4], noCoord};
    addPart(part, sequence);
    if (vertexOrdering_ == 0) addPart({part[2], part[1], part[0], noCoord}, sequence);
  }
}

bool FaceIndex::isWithinBigger(const Corners& corners, Sequence sequence) const {
  const bool isSegment = countCorners(corners) == 2;
  const auto found = parts_.find(isSegment ? normalize(corners, 0) : corners);
  return found != parts_.end() && found->second < sequence;
}

}  // namespace varimesh
