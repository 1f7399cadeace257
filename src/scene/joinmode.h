// The vocabulary of joining.
#pragma once

#include "scene/node.h"

namespace varimesh {

// Bits of Node::joinmode: what differs between the nodes compared.
enum JoinMode : int {
  JOIN_MATERIALS = 1,
  JOIN_COORDS = 2,
  JOIN_NORMALS = 4,
  JOIN_TEXTURECOORDS = 8,
};

// Bits of Node::joinState.
enum JoinState : int {
  JOINED = 1,              // absorbed or dissolved, to be deleted by its parent
  NEVER_DISSOLVED = 2,     // the single separator at the top
  CHILDREN_JOINED = 4,     // a group: next it looks for equal siblings itself
  PREPARED_MATERIALS = 8,  // prepared for joining; on a MaterialBinding: made by that
  PREPARED_COORDS = 16,
  PREPARED_TEXTURECOORDS = 32,
  PREPARED_NORMALS = 64,
};

// Levels and alternatives are no row of things that are all seen: joining leaves them alone.
inline bool isLeftAlone(const Node& node) {
  return node.type == NODE_LOD || node.type == NODE_LevelOfDetail || node.type == NODE_Switch;
}

// A binding that an earlier join has put in. Comparisons pass over it, so that the same children
// are paired.
inline bool isInsertedBinding(const Node& node) {
  return node.type == NODE_MaterialBinding && (node.joinState & PREPARED_MATERIALS) != 0;
}

}  // namespace varimesh
