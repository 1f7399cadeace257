// The segments of one IndexedLineSet at one level of detail.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <unordered_set>
#include <vector>

#include "shapes/shapeset.h"

namespace varimesh {

struct Line {
  Vertex vertex1;
  Vertex vertex2;
};

class LineSet : public ShapeSet {
 public:
  LineSet(int level, OctreeCoordSet& coords, const ShapeAttributes& given)
      : ShapeSet(level, coords, given) {}

  // Adds a segment unless it is a point, or is there already in either direction.
  void insert(const Line& line);
  [[nodiscard]] std::unique_ptr<ShapeSet> generateNextLOD() override;
  void finish() override {
    std::unordered_set<std::uint64_t>().swap(known_);
    ShapeSet::finish();
  }
  // Segments have neither area nor volume: lines are clustered by the weighted mean alone.
  void calcErrors(const CollapsingCell&, CellErrors&) const override {}
  void print(Output& out, int indent) const;

 protected:
  [[nodiscard]] std::span<const CoordId> getCoords(ShapeId shape) const override {
    return lines_[shape];
  }

 private:
  using Ends = std::array<CoordId, 2>;

  [[nodiscard]] bool insertOk(const Line& line);
  [[nodiscard]] bool isKnown(const Ends& ends);
  [[nodiscard]] Vertex getRepresentOfVertex(ShapeId shape, unsigned end) const;

  std::vector<Ends> lines_;
  // While segments are inserted, for points with very many of them: all those up to a position of
  // the list, each as its two ends in order.
  std::unordered_set<std::uint64_t> known_;
  std::size_t knownCount_ = 0;
};

}  // namespace varimesh
