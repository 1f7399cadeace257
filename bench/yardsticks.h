// The yardsticks that need another library. Each answers the processor time that it took, in
// seconds.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace varimesh {

// One shape, as the simplifying library wants it: only points that are used.
struct YardstickMesh {
  std::vector<std::array<float, 3>> points;
  std::vector<unsigned> corners;  // three for each triangle
};

struct ChainResult {
  double time = 0;
  std::size_t levels = 0;  // of all meshes, without level 0
};

// Makes level after level of each mesh, aiming at half the triangles of the level before, until
// that leads no further: by collapsing edges, or by clustering points.
ChainResult measureEdgeChain(const std::vector<YardstickMesh>& meshes);
ChainResult measureClusterChain(const std::vector<YardstickMesh>& meshes);

// Reads a scene into a scene graph. Negative when that fails.
double measureSceneGraphRead(const std::string& fileName);

}  // namespace varimesh
