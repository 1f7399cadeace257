#include "shapes/faceset.h"

#include <algorithm>

namespace varimesh {

int FaceSet::nolines = 0;
int FaceSet::noquads = 0;

void FaceSet::reserve(std::size_t faces) {
  faces_.reserve(faces);
  sequences_.reserve(faces);
  numbers.reserve(faces);
}

// A quadrangle may become two faces, hence the step.
void FaceSet::insert(const Face& face) {
  insert(face, sequences_.empty() ? 0 : sequences_.back() + 2);
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
  faces_.push_back(face.getCorners());
  sequences_.push_back(sequence);
  numbers.append(face.vertices);
}

// A face whose corners keep apart stays as it is, on other points: the general road would copy
// corner by corner and find nothing to leave out (a tenth of the time of making a level).
void FaceSet::insertRepresent(const FaceSet& previous, ShapeId shape, Sequence sequence,
                              const Corners& corners) {
  faces_.push_back(corners);
  sequences_.push_back(sequence);
  numbers.append(previous.numbers, shape);
}

// A triangle of which two corners, i and j behind it, come to lie on one point becomes a segment.
// About every second triangle does (3 % of the time of a whole run on a large mesh).
void FaceSet::insertSegment(const FaceSet& previous, ShapeId shape, Sequence sequence) {
  const Corners& corners = previous.faces_[shape];
  const Corners represents = previous.getRepresents(shape);
  const unsigned i = represents[0] == represents[1] ? 0 : represents[1] == represents[2] ? 1 : 2;
  const unsigned j = (i + 1) % 3;
  const unsigned omitted = coordSet.getSelected(corners[j]) == corners[i] ? j : i;
  const unsigned first = omitted == 0 ? 1 : 0;
  const unsigned second = omitted == 2 ? 1 : 2;
  faces_.push_back({represents[first], represents[second], noCoord, noCoord});
  sequences_.push_back(sequence);
  numbers.append(previous.numbers, shape, {first, second});
}

// Faces that keep four corners are inserted first, then those with three, then segments, each kind
// in the order of this level.
std::unique_ptr<ShapeSet> FaceSet::generateNextLOD() {
  auto next = std::make_unique<FaceSet>(lod + 1, coordSet, attributes, vertexOrdering_);
  const auto size = static_cast<Sequence>(setCount);
  next->reserve(size);
  const Sequence firstTriangle = quadCount > 0 ? 2 * size : 0;
  const Sequence firstSegment = firstTriangle + size;
  std::vector<ShapeId> lines;
  for (ShapeId shape = 0; shape < size; ++shape) {
    const Sequence sequence = sequences_[shape];
    const Corners represents = getRepresents(shape);
    const int n = countCorners(represents);
    // The number of corners less those whose representative is that of the next corner.
    int count = 0;
    for (unsigned i = 0, before = static_cast<unsigned>(n) - 1; i < static_cast<unsigned>(n); ++i) {
      if (represents[i] != represents[before]) ++count;
      before = i;
    }
    if (count == 4) {
      next->insert(createRepresent(shape), 2 * sequence);
    } else if (count == 3 && n == 3) {
      next->insertRepresent(*this, shape, firstTriangle + sequence, represents);
    } else if (count == 3) {
      next->insert(createRepresent(shape), firstTriangle + sequence);
    } else if (count == 2 && nolines == 0) {
      lines.push_back(shape);
    }
  }
  for (const ShapeId shape : lines) {
    const Sequence sequence = firstSegment + sequences_[shape];
    if (getCoords(shape).size() == 3) {
      next->insertSegment(*this, shape, sequence);
    } else {
      next->insert(createRepresent(shape), sequence);
    }
  }
  // Only what is written is needed any longer.
  next->refs_ = std::move(refs_);
  handOver(*next);
  std::vector<Sequence>().swap(sequences_);
  next->finish();
  return next;
}

Corners FaceSet::getRepresents(ShapeId shape) const {
  Corners corners = faces_[shape];
  for (CoordId& corner : corners) {
    if (corner != noCoord) corner = coordSet.getRepresent(corner);
  }
  return corners;
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
