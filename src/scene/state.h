// The traversal state: what the nodes passed so far have put in force.
#pragma once

#include "reader/names.h"
#include "values/matrix.h"

namespace varimesh {

class CoordNode;
class MaterialNode;
class Node;
class NormalNode;
class ShapeHintsNode;
class TextureCoordNode;
class TextureNode;

// A plain value: separators save and restore it, shapes keep a copy. It owns none of the nodes.
class State {
 public:
  CoordNode* coordNode = nullptr;
  MaterialNode* materialNode = nullptr;
  NormalNode* normalNode = nullptr;
  TextureCoordNode* textureCoordNode = nullptr;
  TextureNode* textureNode = nullptr;
  // The node that set the next two, so that its hints can be repeated; null: none so far.
  ShapeHintsNode* shapeHintsNode = nullptr;
  int materialBinding = DEFAULT;
  int normalBinding = DEFAULT;
  int vertexOrdering = 0;  // 0 UNKNOWN_ORDERING, 1 CLOCKWISE, 2 COUNTERCLOCKWISE
  int faceType = 1;        // 0 UNKNOWN_FACE_TYPE, 1 CONVEX
  Matrix matrix;           // from the present coordinates to world coordinates

  // Puts a transformation in front: it applies before those already in force.
  void transform(const Matrix& local) { matrix = local * matrix; }
  // The greatest factor by which `matrix` stretches a space diagonal of the unit cube.
  [[nodiscard]] float getMaxScale() const;
};

}  // namespace varimesh
