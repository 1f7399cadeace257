// Levels of any faces or lines over few and over clustered points, with a check of what holds for
// every level.
#include <algorithm>
#include <memory>
#include <set>
#include <vector>

#include "end_of_run.h"
#include "lod/octreecoordset.h"
#include "shapes/faceset.h"
#include "shapes/lineset.h"

namespace varimesh {
namespace {

Coord takePoint(Bytes& bytes, int kind) {
  const auto number = [&]() -> float {
    switch (kind) {
      case 0: return static_cast<float>(bytes.below(8));
      case 1: return 1.0F + static_cast<float>(bytes.below(16)) * 1.1920929e-7F;
      case 2: return static_cast<float>(bytes.take<std::int16_t>());
      default: {
        const auto value = bytes.take<float>();
        return value - value == 0 ? value : 0.0F;
      }
    }
  };
  const float x = number();
  const float y = number();
  return {x, y, number()};
}

// Uses only points of the level before, and fewer of them.
void check(const OctreeCoordSet& coords, const std::set<int>& before, int usedBefore) {
  for (const OctreeCoord& coord : coords.getOctreeCoords()) {
    if (coord.isUsed && before.count(coord.index) == 0) report("a point out of nowhere");
  }
  if (coords.getCountUsed() > usedBefore) report("more points than before");
  if (CoordSet::minDiff > 0 && coords.getCountUsed() >= usedBefore) report("no point less");
}

std::set<int> getUsed(const OctreeCoordSet& coords) {
  std::set<int> used;
  for (const OctreeCoord& coord : coords.getOctreeCoords()) {
    if (coord.isUsed) used.insert(coord.index);
  }
  return used;
}

void makeLevels(std::string_view input) {
  setDefaults();
  Bytes bytes(input);
  const int kind = bytes.below(4);
  const int flags = bytes.below(256);
  CoordSet::minDiff = static_cast<float>(bytes.below(100)) / 100;
  FaceSet::nolines = flags & 1;
  FaceSet::noquads = flags >> 1 & 1;
  OctreeCoordSet::weightAlgErrorArea = static_cast<float>((flags >> 2 & 3) - 1);
  OctreeCoordSet::weightAlgErrorVolume = static_cast<float>((flags >> 4 & 3) - 1);
  const bool isLines = (flags & 128) != 0;

  OctreeCoordSet coords;
  const int points = 2 + bytes.below(120);
  Bounds box;
  for (int i = 0; i < points; ++i) {
    const Coord p = takePoint(bytes, kind);
    if (i == 0) box.setTo(p.x, p.y, p.z, p.x, p.y, p.z);
    box.enlargeIfOutside(p.x, p.y, p.z);
    coords.insert(p);
  }
  coords.setBounds(box);
  coords.setIndices();

  // Two shapes, one after the other, on one list of points.
  for (int round = 0; round < 2 && !bytes.isEmpty(); ++round) {
    std::vector<int> positions;
    for (int n = 4 + bytes.below(250); n > 0 && !bytes.isEmpty(); --n) {
      positions.push_back(bytes.below(points));
    }
    coords.beginShape(positions, true);
    std::unique_ptr<ShapeSet> set;
    const auto vertex = [&](std::size_t i) {
      return Vertex{coords.getCoord(positions[i]), {}, {}, {}};
    };
    if (isLines) {
      auto lines = std::make_unique<LineSet>(0, coords, ShapeAttributes());
      for (std::size_t i = 0; i + 1 < positions.size(); i += 2) {
        lines->insert({vertex(i), vertex(i + 1)});
      }
      set = std::move(lines);
    } else {
      auto faces = std::make_unique<FaceSet>(0, coords, ShapeAttributes(), bytes.below(3));
      for (std::size_t i = 0; i + 3 < positions.size(); i += 4) {
        faces->insert(Face(vertex(i), vertex(i + 1), vertex(i + 2), vertex(i + 3)));
      }
      set = std::move(faces);
    }
    set->finish();
    coords.resetLODs();
    coords.setShapeType(isLines ? 2 : 1);
    for (int level = 0; coords.getCountUsed() > 1 && set->setCount > 0; ++level) {
      if (level > 320) report("levels without end");
      const std::set<int> before = getUsed(coords);
      const int usedBefore = coords.getCountUsed();
      coords.generateNextLOD(*set);
      set = set->generateNextLOD();
      check(coords, before, usedBefore);
      if (!(coords.getRange() >= 0)) report("a range below zero");
    }
  }
}

}  // namespace
}  // namespace varimesh

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  varimesh::attempt(varimesh::makeLevels, {reinterpret_cast<const char*>(data), size});
  return 0;
}
