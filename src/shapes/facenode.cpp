#include "shapes/facenode.h"

#include <algorithm>
#include <cstdio>

#include "scene/bindingnodes.h"
#include "shapes/faceset.h"
#include "shapes/vertexreader.h"
#include "triangulate/triangulator.h"
#include "values/lazy.h"

namespace varimesh {
namespace {

using Source = IndexReader::Source;

constexpr VertexReader::Sources faceSources = {
    Source::none,          Source::none,          Source::polygonNumber, Source::listByPolygon,
    Source::polygonNumber, Source::listByPolygon, Source::vertexNumber,  Source::listByVertex};

// Fills the set of level 0: first all quadrangles, then all triangles, those of longer polygons
// among them, then all segments, so that what lies within a bigger face finds it already there.
// Faces need to wait only in shapes that hold bigger ones.
class FaceCollector {
 public:
  FaceCollector(FaceSet& set, const OctreeCoordSet& coords, std::span<const int> positions)
      : set_(set), coordSet_(coords) {
    std::size_t n = 0;
    std::size_t polygons = 0;
    const auto note = [&] {
      hasQuadrangles_ = hasQuadrangles_ || n == 4;
      hasTriangles_ = hasTriangles_ || n == 3 || n > 4;
      polygons += n > 1 ? 1 : 0;
      n = 0;
    };
    for (const int position : positions) {
      if (position == -1) {
        note();
      } else {
        ++n;
      }
    }
    note();
    set_.reserve(polygons);
    if (Triangulator::verbose != 0) static_cast<void>(*triangulator_);  // reports that it is made
  }

  void add(std::span<const Vertex> v) {
    switch (v.size()) {
      case 1: break;
      case 2:
        if (hasQuadrangles_ || hasTriangles_) {
          segments_.push_back({v[0], v[1]});
        } else {
          set_.insert(Face(v[0], v[1]));
        }
        break;
      case 3: addTriangle(v[0], v[1], v[2]); break;
      case 4: set_.insert(Face(v[0], v[1], v[2], v[3])); break;
      default: addPolygon(v); break;
    }
  }

  void finish() {
    for (const auto& t : triangles_) set_.insert(Face(t[0], t[1], t[2]));
    for (const auto& s : segments_) set_.insert(Face(s[0], s[1]));
  }

 private:
  void addTriangle(const Vertex& a, const Vertex& b, const Vertex& c) {
    if (hasQuadrangles_) {
      triangles_.push_back({a, b, c});
    } else {
      set_.insert(Face(a, b, c));
    }
  }

  // A polygon that cannot be triangulated is left out; the triangulator has said so.
  void addPolygon(std::span<const Vertex> v) {
    Triangulator& triangulator = *triangulator_;
    triangulator.reset();
    for (const Vertex& vertex : v) {
      const OctreeCoord& p = coordSet_.getOctreeCoord(vertex.coord);
      triangulator.addPoint(double{p.x}, double{p.y}, double{p.z});
    }
    if (triangulator.run() == 0) return;
    for (int t = 0; t < triangulator.getCount(); ++t) {
      const auto getCorner = [&](int i) {
        return v[static_cast<std::size_t>(triangulator.getPoint(t, i))];
      };
      const Vertex a = getCorner(0);  // one by one: verbose output tells the order
      const Vertex b = getCorner(1);
      addTriangle(a, b, getCorner(2));
    }
  }

  FaceSet& set_;
  const OctreeCoordSet& coordSet_;
  Lazy<Triangulator> triangulator_;  // its tables are large, and most shapes have no use for it
  bool hasQuadrangles_ = false;
  bool hasTriangles_ = false;
  std::vector<std::array<Vertex, 3>> triangles_;
  std::vector<std::array<Vertex, 2>> segments_;
};

}  // namespace

int FaceNode::verbose = 0;

ShapeNode::Kind FaceNode::getKind() const { return {"face", "lod - 0 ", 1, verbose != 0}; }

std::unique_ptr<ShapeSet> FaceNode::generateFaceSet() {
  const std::span<const int> positions = beginShapeSet();
  OctreeCoordSet& coordSet = getCoordSet();
  VertexReader reader(*this, faceSources);
  auto set = std::make_unique<FaceSet>(0, coordSet, reader.getAttributes(), state.vertexOrdering);
  FaceCollector collector(*set, coordSet, positions);
  int polygons = 0;
  reader.forEachPolygon(positions, "polygon", [&](std::span<const Vertex> vertices) {
    collector.add(vertices);
    ++polygons;
  });
  collector.finish();
  set->finish();
  if (verbose != 0) {
    message("face", "list=%d ", polygons);
    printLevelStatistics(*set);
  }
  deleteFields();
  return set;
}

void FaceNode::printLevelStatistics(const ShapeSet& set) const {
  const auto& faces = static_cast<const FaceSet&>(set);
  std::printf("set=%d (quad=%d tri=%d line=%d)\n", faces.setCount, faces.quadCount, faces.triCount,
              faces.lineCount);
}

// Polygons and segments, when a level has both or neither, stand in a separator of their own.
void FaceNode::printLevel(Output& out, int indent, const ShapeSet& set) {
  const auto& faces = static_cast<const FaceSet&>(set);
  const Node separator(NODE_Separator);
  const bool hasSeparator = (faces.polygonCount > 0) == (faces.lineCount > 0);
  int column = indent;
  if (hasSeparator) separator.printHead(out, column);
  const auto printPart = [&](NodeType partType, FaceSet::Mode mode) {
    int inner = column;
    type = partType;
    printHead(out, inner);
    faces.print(out, inner, mode);
    printTail(out, column);
    type = NODE_IndexedFaceSet;
  };
  if (faces.polygonCount > 0) printPart(NODE_IndexedFaceSet, FaceSet::polygons);
  if (faces.lineCount > 0) printPart(NODE_IndexedLineSet, FaceSet::segments);
  if (hasSeparator) separator.printTail(out, indent);
}

// All faces written are convex. Where that must be said, the other hints in force are repeated,
// since a ShapeHints node sets them all.
std::unique_ptr<Node> FaceNode::makeHints() const {
  if (state.faceType != 0) return nullptr;
  ShapeHintsNode::Hints inForce;
  if (state.shapeHintsNode != nullptr) inForce = state.shapeHintsNode->getHints();
  auto hints = std::make_unique<Node>(NODE_ShapeHints);
  const auto addWord = [&](FieldId field, EnumKind kind, std::optional<int> word) {
    if (word) hints->fields.emplace_back(field, std::make_unique<FEnum>(*word, kind));
  };
  addWord(FIELD_vertexOrdering, KIND_vertexOrdering, inForce.vertexOrdering);
  addWord(FIELD_shapeType, KIND_shapeType, inForce.shapeType);
  addWord(FIELD_faceType, KIND_faceType, 1);
  if (inForce.creaseAngle) {
    hints->fields.emplace_back(FIELD_creaseAngle,
                               std::make_unique<FFloat>(std::vector<float>{*inForce.creaseAngle}));
  }
  return hints;
}

}  // namespace varimesh
