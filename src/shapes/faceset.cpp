#include "shapes/faceset.h"

#include <algorithm>

namespace varimesh {

int FaceSet::nolines = 0;
int FaceSet::noquads = 0;

void FaceSet::reserve(std::size_t faces) {
  candidates_.corners.reserve(faces);
  candidates_.sequences.reserve(faces);
}

// A quadrangle may become two faces, hence the step.
void FaceSet::insert(const Face& face) {
  insert(face, candidates_.sequences.empty() ? 0 : candidates_.sequences.back() + 2);
}

void FaceSet::insert(const Face& face, Sequence sequence) {
  if (face.count == 4) {
    insertQuadrangle(face, sequence);
  } else {
    insertCandidate(face, sequence);
  }
}

void FaceSet::insertQuadrangle(const Face& face, Sequence sequence) {
  const auto& v = face.vertices;
  if (v[0].coord == v[2].coord || v[1].coord == v[3].coord) {
    insertCandidate(Face(v[0], v[1]), sequence);
    insertCandidate(Face(v[2], v[3]), sequence + 1);
    return;
  }
  const std::array<Vec, 4> points = {getPosition(v[0].coord), getPosition(v[1].coord),
                                     getPosition(v[2].coord), getPosition(v[3].coord)};
  const Quadrangle quadrangle(points);
  if (!quadrangle.isIrregular && noquads == 0) {
    insertCandidate(face, sequence);
  } else if (quadrangle.diagonal == 0) {
    insertCandidate(Face(v[0], v[1], v[2]), sequence);
    insertCandidate(Face(v[0], v[2], v[3]), sequence + 1);
  } else {
    insertCandidate(Face(v[1], v[2], v[3]), sequence);
    insertCandidate(Face(v[0], v[1], v[3]), sequence + 1);
  }
}

void FaceSet::insertCandidate(const Face& face, Sequence sequence) {
  if (face.count < 2 || (face.count == 2 && nolines != 0)) return;
  candidates_.corners.push_back(face.getCorners());
  candidates_.sequences.push_back(sequence);
  candidates_.numbers.append(face.vertices);
}

// A triangle whose corners keep apart stays as it is, on other points: the general road would copy
// corner by corner and find nothing to leave out (a tenth of the time of making a level).
void FaceSet::insertTriangle(const FaceSet& previous, ShapeId shape, Sequence sequence) {
  const Corners& from = previous.faces_[shape];
  candidates_.corners.push_back({coordSet.getRepresent(from[0]), coordSet.getRepresent(from[1]),
                                 coordSet.getRepresent(from[2]), noCoord});
  candidates_.sequences.push_back(sequence);
  candidates_.numbers.append(previous.numbers, shape);
}

// Faces that keep four corners are inserted first, then those with three, then segments, each kind
// in the order of this level.
std::unique_ptr<ShapeSet> FaceSet::generateNextLOD() {
  auto next = std::make_unique<FaceSet>(lod + 1, coordSet, attributes, vertexOrdering_);
  const auto size = static_cast<Sequence>(setCount);
  const Sequence firstTriangle = quadCount > 0 ? 2 * size : 0;
  const Sequence firstSegment = firstTriangle + size;
  for (ShapeId shape = 0; shape < size; ++shape) {
    const Sequence sequence = sequences_[shape];
    switch (getVertexCountOfRepresent(shape)) {
      case 4: next->insert(createRepresent(shape), 2 * sequence); break;
      case 3:
        if (faces_[shape][3] == noCoord) {
          next->insertTriangle(*this, shape, firstTriangle + sequence);
        } else {
          next->insert(createRepresent(shape), firstTriangle + sequence);
        }
        break;
      case 2:
        if (nolines == 0) next->insert(createRepresent(shape), firstSegment + sequence);
        break;
      default: break;
    }
  }
  // Only what is written is needed any longer.
  refs_.clear();
  std::vector<Sequence>().swap(sequences_);
  next->finish();
  return next;
}

// The number of corners less those whose representative is that of the next corner.
int FaceSet::getVertexCountOfRepresent(ShapeId shape) const {
  const auto coords = getCoords(shape);
  int n = 0;
  CoordId before = coordSet.getRepresent(coords.back());
  for (const CoordId coord : coords) {
    const CoordId represent = coordSet.getRepresent(coord);
    if (represent != before) ++n;
    before = represent;
  }
  return n;
}

// The face on the representatives of its corners. Of several corners with one representative, the
// one whose place the cluster took supplies the other attributes, if the face has it.
Face FaceSet::createRepresent(ShapeId shape) const {
  const auto coords = getCoords(shape);
  std::array<Vertex, 4> vertices;
  for (unsigned i = 0; i < coords.size(); ++i) {
    const CoordId selected = coordSet.getSelected(coords[i]);
    const bool isSupplied = selected != coords[i] && selected != noCoord &&
                            std::find(coords.begin(), coords.end(), selected) != coords.end();
    if (isSupplied) continue;
    vertices[i] = numbers.getVertex(coordSet.getRepresent(coords[i]), shape, i);
  }
  return Face(vertices[0], vertices[1], vertices[2], vertices[3]);
}

void FaceSet::print(Output& out, int indent, Mode mode) const {
  constexpr int endCount = 1;
  if (mode == segments) {
    printIndexFields(out, indent, endCount,
                     [](std::span<const CoordId> c) { return c.size() == 2; });
  } else {
    printIndexFields(out, indent, endCount,
                     [](std::span<const CoordId> c) { return c.size() > 2; });
  }
}

}  // namespace varimesh
