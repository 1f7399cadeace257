// Reading the corners of a shape's polygons against the attribute nodes that it captured.
#pragma once

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "shapes/face.h"
#include "shapes/indexreader.h"
#include "shapes/shapenode.h"

namespace varimesh {

class VertexReader {
 public:
  // For each binding number, where the index of a corner comes from.
  using Sources = std::array<IndexReader::Source, 8>;

  VertexReader(ShapeNode& shape, const Sources& sources);

  [[nodiscard]] const ShapeAttributes& getAttributes() const { return attributes_; }
  // Calls visit(vertices) for each polygon of the shape, in order. Every fault in the lists is an
  // error of the shape; `noun` names what it consists of.
  template <class Visit>
  void forEachPolygon(std::span<const int> positions, const char* noun, Visit visit) {
    Polygon polygon;
    while (!positions.empty()) {
      const auto end = std::find(positions.begin(), positions.end(), -1);
      const auto n = static_cast<std::size_t>(end - positions.begin());
      if (n == 0) shape_.error("%s with no vertices\n", noun);
      polygon.positions = positions.first(n);
      read(polygon);
      visit(std::span<const Vertex>(vertices_));
      ++polygon.number;
      polygon.firstSegment += static_cast<int>(n) - 1;
      polygon.firstVertex += static_cast<int>(n);
      positions = positions.subspan(end == positions.end() ? n : n + 1);
    }
  }

 private:
  void read(const Polygon& polygon);

  ShapeNode& shape_;
  IndexReader materials_;
  IndexReader normals_;
  IndexReader textureCoords_;
  ShapeAttributes attributes_;
  std::vector<Vertex> vertices_;  // of the present polygon
};

}  // namespace varimesh
