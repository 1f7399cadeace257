// Builds the node of the class that fits a node type.
#pragma once

#include <memory>

#include "scene/groupnodes.h"
#include "scene/node.h"

namespace varimesh {

// The children are those of a grouping node; other types have none.
std::unique_ptr<Node> makeNode(NodeInit&& init, NodeList&& children);

}  // namespace varimesh
