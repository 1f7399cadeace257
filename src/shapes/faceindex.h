// Finding faces among very many that share a corner.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>

#include "shapes/face.h"
#include "values/hash.h"

namespace varimesh {

// The place of a face in the order in which the faces of a set were inserted.
using Sequence = std::uint32_t;

// Answers in constant time what otherwise takes a walk through the list of faces at a point. It
// costs several times the memory of the faces, so sets fill it only with lists that have grown too
// long to be compared face by face: when many faces have shrunk onto few points.
//
// It serves for faces of one number of corners: all that are asked for must have as many.
class FaceIndex {
 public:
  explicit FaceIndex(int vertexOrdering) : vertexOrdering_(vertexOrdering) {}

  // The face last added of the list of equal faces at a point; noShape at first.
  ShapeId& getNewest(CoordId coord) { return newest_.try_emplace(coord, noShape).first->second; }
  void addEqual(const Corners& corners, ShapeId face);
  // The face added that equals `corners`; noShape if there is none.
  [[nodiscard]] ShapeId findEqual(const Corners& corners) const;

  // How often the list of bigger faces at a point has been asked for, this time included.
  unsigned countQuestion(CoordId coord) { return ++questions_[coord]; }
  // Adds what a bigger face contains.
  void addBigger(const Corners& corners, Sequence sequence);
  // Whether a bigger face, inserted before `sequence`, contains `corners`.
  [[nodiscard]] bool isWithinBigger(const Corners& corners, Sequence sequence) const;

 private:
  struct Hash {
    std::size_t operator()(const Corners& key) const {
      const auto low = std::uint64_t{key[0]} << 32U | key[1];
      return mixHash(mixHash(1, low), std::uint64_t{key[2]} << 32U | key[3]);
    }
  };

  void addPart(const Corners& part, Sequence sequence);

  int vertexOrdering_;
  std::unordered_map<CoordId, ShapeId> newest_;
  std::unordered_map<Corners, ShapeId, Hash> equals_;
  std::unordered_map<CoordId, unsigned> questions_;
  std::unordered_map<Corners, Sequence, Hash> parts_;  // the first face that contains it
};

}  // namespace varimesh
