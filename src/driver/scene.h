// A parsed scene with everything that it goes through until it has been written.
#pragma once

#include <memory>

#include "scene/attributenodes.h"
#include "scene/bindingnodes.h"
#include "scene/groupnodes.h"
#include "values/output.h"

namespace varimesh {

// The operations are the phases of a run, in the order in which they are to be called. Each relies
// on those before it. Errors in the scene end the run.
class Scene {
 public:
  // Takes the top-level nodes and puts the header node in front.
  explicit Scene(NodeList tree);

  void resolveDependencies();
  // Takes the viewing angle from the first perspective camera, if there is one.
  void searchCamera();
  // Merges equivalent nodes; answers how many nodes that removed.
  int join();
  // Lists the nodes on standard output.
  void printTree();
  // Writes the scene, making the levels of detail on the way.
  void print(Output& out) { root_.print(out, 0); }

 private:
  // The attribute nodes in force where a scene has set none. Shapes refer to them until the end.
  struct DefaultNodes {
    CoordNode coord;
    MaterialNode material;
    NormalNode normal;
    TextureCoordNode textureCoord;
    TextureNode texture;

    DefaultNodes();
  };

  DefaultNodes defaults_;
  RootNode root_;
};

}  // namespace varimesh
