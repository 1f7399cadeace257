// Runs the level generator on shapes given as plain numbers, without nodes around them.
#pragma once

#include <array>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "plain_levels.h"
#include "shapes/faceset.h"
#include "shapes/lineset.h"

namespace varimesh {

// Puts rules in force as long as it lives.
class RulesInForce {
 public:
  explicit RulesInForce(const plain::Rules& rules) { set(rules); }
  ~RulesInForce() { set(plain::Rules()); }
  RulesInForce(const RulesInForce&) = delete;
  RulesInForce& operator=(const RulesInForce&) = delete;

 private:
  static void set(const plain::Rules& rules) {
    OctreeCoordSet::weightAlgErrorArea = rules.weights[0];
    OctreeCoordSet::weightAlgErrorVolume = rules.weights[1];
    OctreeCoordSet::weightAlgWeightedMean = rules.weights[2];
    CoordSet::minDiff = rules.minDiff;
    CoordSet::errorRange = rules.errorRange;
    CoordSet::cameraHeightAngle = rules.cameraHeightAngle;
    Face::splitCosinus = rules.splitCosinus;
    FaceSet::nolines = rules.nolines ? 1 : 0;
    FaceSet::noquads = rules.noquads ? 1 : 0;
  }
};

inline std::unique_ptr<OctreeCoordSet> makeCoordSet(const std::vector<plain::Point>& points) {
  auto set = std::make_unique<OctreeCoordSet>();
  Bounds box;
  if (!points.empty()) {
    const auto& [x, y, z] = points.front();
    box = Bounds(x, y, z, x, y, z);
  }
  for (const auto& [x, y, z] : points) {
    box.enlargeIfOutside(x, y, z);
    set->insert(Coord(x, y, z));
  }
  set->setBounds(box);
  set->setIndices();
  return set;
}

struct LevelRun {
  std::vector<std::unique_ptr<ShapeSet>> levels;
  std::vector<int> used;  // beside them: points in use
};

inline Vertex toVertex(const OctreeCoordSet& set, const plain::Outline& outline, std::size_t i) {
  if (i >= outline.size()) return {};
  const plain::Corner& c = outline[i];
  return {set.getCoord(c.point), c.material, c.normal, c.texture};
}

// The levels of one shape.
inline LevelRun runLevels(OctreeCoordSet& set, const plain::Input& input,
                          const ShapeAttributes& attributes = {}) {
  std::vector<int> positions;
  for (const auto& outline : input.outlines) {
    for (const auto& corner : outline) positions.push_back(corner.point);
  }
  set.beginShape(positions, true);
  LevelRun run;
  if (input.shapeType == 1) {
    auto faces = std::make_unique<FaceSet>(0, set, attributes, input.vertexOrdering);
    for (const auto& o : input.outlines) {
      faces->insert(
          Face(toVertex(set, o, 0), toVertex(set, o, 1), toVertex(set, o, 2), toVertex(set, o, 3)));
    }
    run.levels.push_back(std::move(faces));
  } else {
    auto lines = std::make_unique<LineSet>(0, set, attributes);
    for (const auto& o : input.outlines) lines->insert({toVertex(set, o, 0), toVertex(set, o, 1)});
    run.levels.push_back(std::move(lines));
  }
  run.levels.back()->finish();
  set.resetLODs();
  set.setShapeType(input.shapeType);
  run.used.push_back(set.getCountUsed());
  while (run.used.back() > 1 && run.levels.back()->setCount > 0) {
    ShapeSet& present = *run.levels.back();
    set.generateNextLOD(present);
    run.levels.push_back(present.generateNextLOD());
    present.range = set.getRange();
    run.used.push_back(set.getCountUsed());
  }
  return run;
}

// What a printer writes, every list on one line.
template <class Print>
std::string catchOutput(Print print) {
  const std::array<int*, 2> limits = {&global_longcpl, &global_floatcpl};
  const std::array<int, 2> old = {global_longcpl, global_floatcpl};
  for (int* limit : limits) *limit = std::numeric_limits<int>::max();
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* file = open_memstream(&text, &size);
  {
    Output out(file);
    print(out);
    out.flush();
  }
  std::fclose(file);
  std::string result(text, size);
  std::free(text);
  for (std::size_t i = 0; i < 2; ++i) *limits[i] = old[i];
  return result;
}

// ---- A level as text: its counts and measures, then its index fields as they are written

struct Counts {
  int set = 0, polygons = 0, lines = 0, triangles = 0, quads = 0;
};

inline std::string describe(const Counts& counts, int used, float range, const Vec& center,
                            float sphere) {
  std::array<char, 250> text;
  std::snprintf(text.data(), text.size(),
                "set=%d polygon=%d line=%d tri=%d quad=%d used=%d range=%a center=%a,%a,%a "
                "sphere=%a\n",
                counts.set, counts.polygons, counts.lines, counts.triangles, counts.quads, used,
                double{range}, double{center.x}, double{center.y}, double{center.z},
                double{sphere});
  return text.data();
}

inline std::string describe(const ShapeSet& set, int used) {
  const auto* faces = dynamic_cast<const FaceSet*>(&set);
  Counts counts{set.setCount, 0, set.setCount, 0, 0};
  if (faces) {
    counts = {set.setCount, faces->polygonCount, faces->lineCount, faces->triCount,
              faces->quadCount};
  }
  const auto printPolygons = [&](Output& out) {
    if (faces) faces->print(out, 0, FaceSet::polygons);
  };
  const auto printSegments = [&](Output& out) {
    if (faces) return faces->print(out, 0, FaceSet::segments);
    dynamic_cast<const LineSet&>(set).print(out, 0);
  };
  return describe(counts, used, set.range, set.getCenter(), set.getSphere()) +
         catchOutput(printPolygons) + catchOutput(printSegments);
}

inline std::string describe(const plain::Level& level, int shapeType,
                            const ShapeAttributes& attributes) {
  Counts counts;
  for (const auto& shape : level.shapes) {
    ++counts.set;
    ++(shape.size() == 2 ? counts.lines : counts.polygons);
    if (shape.size() > 2) ++(shape.size() == 3 ? counts.triangles : counts.quads);
  }
  const auto& [x, y, z] = level.center;
  std::string text = describe(counts, level.used, level.range, Vec(x, y, z), level.sphere);
  for (const bool polygons : {true, false}) {
    if (polygons && shapeType != 1) continue;
    const auto addField = [&](const char* name, int binding, int plain::Corner::*number) {
      std::string list;
      for (const plain::Outline& outline : level.shapes) {
        if ((outline.size() > 2) != polygons) continue;
        if (!list.empty()) list += ",";
        if (binding <= PER_FACE_INDEXED) {
          list += std::to_string(outline.front().*number);
          continue;
        }
        for (const plain::Corner& corner : outline) list += std::to_string(corner.*number) + ",";
        list += "-1";
      }
      text += std::string(name) + " [ " + list + " ]\n";
    };
    addField("coordIndex", PER_VERTEX_INDEXED, &plain::Corner::point);
    if (level.shapes.empty()) continue;
    if (attributes.hasMaterials) {
      addField("materialIndex", attributes.materialBinding, &plain::Corner::material);
    }
    if (attributes.hasNormals) {
      addField("normalIndex", attributes.normalBinding, &plain::Corner::normal);
    }
    if (attributes.hasTextureCoords) {
      addField("textureCoordIndex", PER_VERTEX_INDEXED, &plain::Corner::texture);
    }
  }
  return text;
}

}  // namespace varimesh
