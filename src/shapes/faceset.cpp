#include "shapes/faceset.h"

#include <algorithm>

namespace varimesh {

int FaceSet::nolines = 0;
int FaceSet::noquads = 0;

void FaceSet::reserve(std::size_t faces) { faces_.reserve(faces); }

void FaceSet::insert(const Face& face) {
  if (face.count == 4) {
    insertQuadrangle(face);
  } else {
    insertIfNew(face);
  }
}

void FaceSet::insertQuadrangle(const Face& face) {
  const auto& v = face.vertices;
  if (v[0].coord == v[2].coord || v[1].coord == v[3].coord) {
    insertIfNew(Face(v[0], v[1]));
    insertIfNew(Face(v[2], v[3]));
    return;
  }
  const std::array<Vec, 4> points = {getPosition(v[0].coord), getPosition(v[1].coord),
                                     getPosition(v[2].coord), getPosition(v[3].coord)};
  const Quadrangle quadrangle(points);
  if (!quadrangle.isIrregular && noquads == 0) {
    insertIfNew(face);
  } else if (quadrangle.diagonal == 0) {
    insertIfNew(Face(v[0], v[1], v[2]));
    insertIfNew(Face(v[0], v[2], v[3]));
  } else {
    insertIfNew(Face(v[1], v[2], v[3]));
    insertIfNew(Face(v[0], v[1], v[3]));
  }
}

void FaceSet::insertIfNew(const Face& face) {
  if (face.count < 2 || (face.count == 2 && nolines != 0)) return;
  const Corners corners = face.getCorners();
  if (!insertOk(corners)) return;
  append(corners);
  materials.append(face.vertices, &Vertex::material);
  normals.append(face.vertices, &Vertex::normal);
  textureCoords.append(face.vertices, &Vertex::textureCoord);
}

void FaceSet::append(const Corners& corners) {
  const auto shape = static_cast<ShapeId>(setCount);
  faces_.push_back(corners);
  const int n = countCorners(corners);
  for (unsigned i = 0; i < static_cast<unsigned>(n); ++i) coordSet.addShapeRef(corners[i], shape);
  ++setCount;
  if (n == 2) {
    ++lineCount;
  } else {
    ++polygonCount;
    ++(n == 4 ? quadCount : triCount);
  }
}

// A face that contains all corners of the new one stands in the list of each of them, so the
// shortest list decides.
bool FaceSet::insertOk(const Corners& corners) {
  constexpr std::uint32_t longList = 64;
  const OctreeCoord* least = &coordSet.getOctreeCoord(corners[0]);
  for (unsigned i = 1; i < 4 && corners[i] != noCoord; ++i) {
    const OctreeCoord& coord = coordSet.getOctreeCoord(corners[i]);
    if (coord.shapeCount < least->shapeCount) least = &coord;
  }
  if (least->shapeCount > longList) return !index_->contains(corners, faces_, vertexOrdering_);
  for (std::uint32_t i = least->shapeRefs; i != noShapeRef;) {
    const ShapeRef& ref = coordSet.getShapeRef(i);
    if (isEquivOrSubsetOf(corners, faces_[ref.shape], vertexOrdering_)) return false;
    i = ref.next;
  }
  return true;
}

// Faces that keep four corners come first, then those with three, then segments, so that a smaller
// face that lies within a bigger one finds it already there.
std::unique_ptr<ShapeSet> FaceSet::generateNextLOD() {
  auto next = std::make_unique<FaceSet>(lod + 1, coordSet, attributes, vertexOrdering_);
  coordSet.deleteShapeRefs();
  std::vector<ShapeId> triangles;
  std::vector<ShapeId> lines;
  for (ShapeId shape = 0; shape < faces_.size(); ++shape) {
    switch (getVertexCountOfRepresent(shape)) {
      case 4: next->insert(createRepresent(shape)); break;
      case 3:
        if (quadCount == 0) {
          next->insertTriangle(*this, shape);
        } else {
          triangles.push_back(shape);
        }
        break;
      case 2: lines.push_back(shape); break;
      default: break;
    }
  }
  for (const ShapeId shape : triangles) next->insert(createRepresent(shape));
  for (const ShapeId shape : lines) next->insert(createRepresent(shape));
  next->finish();
  return next;
}

// A triangle whose corners keep apart stays as it is, on other points: the general road would copy
// corner by corner and find nothing to leave out (a tenth of the time of making a level).
void FaceSet::insertTriangle(const FaceSet& previous, ShapeId shape) {
  const Corners& from = previous.faces_[shape];
  const Corners corners = {coordSet.getRepresent(from[0]), coordSet.getRepresent(from[1]),
                           coordSet.getRepresent(from[2]), noCoord};
  if (!insertOk(corners)) return;
  append(corners);
  materials.append(previous.materials, shape);
  normals.append(previous.normals, shape);
  textureCoords.append(previous.textureCoords, shape);
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

Vertex FaceSet::getVertex(ShapeId shape, unsigned corner) const {
  return {faces_[shape][corner], materials.get(shape, corner), normals.get(shape, corner),
          textureCoords.get(shape, corner)};
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
    vertices[i] = getVertex(shape, i);
    vertices[i].coord = coordSet.getRepresent(coords[i]);
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
