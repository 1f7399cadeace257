// Chains of levels made with meshoptimizer.
#include <meshoptimizer.h>

#include <limits>

#include "process.h"
#include "yardsticks.h"

namespace varimesh {
namespace {

// Leaves out the points that no corner uses any more, as every level is made from those in use.
void dropUnusedPoints(YardstickMesh& mesh, std::vector<unsigned>& numbers) {
  constexpr unsigned none = std::numeric_limits<unsigned>::max();
  numbers.assign(mesh.points.size(), none);
  std::vector<std::array<float, 3>> kept;
  kept.reserve(mesh.points.size());
  for (unsigned& corner : mesh.corners) {
    unsigned& number = numbers[corner];
    if (number == none) {
      number = static_cast<unsigned>(kept.size());
      kept.push_back(mesh.points[corner]);
    }
    corner = number;
  }
  mesh.points = std::move(kept);
}

template <class Simplify>
ChainResult measureChain(const std::vector<YardstickMesh>& meshes, Simplify simplify) {
  ChainResult result;
  const double start = getProcessorTime();
  std::vector<unsigned> numbers;
  std::vector<unsigned> corners;
  for (const YardstickMesh& mesh : meshes) {
    YardstickMesh level = mesh;
    while (level.corners.size() > 3) {
      corners.resize(level.corners.size());
      const std::size_t target = level.corners.size() / 6 * 3;
      const std::size_t count = simplify(corners.data(), level, target);
      if (count >= level.corners.size()) break;
      corners.resize(count);
      level.corners = corners;
      ++result.levels;
      dropUnusedPoints(level, numbers);
    }
  }
  result.time = getProcessorTime() - start;
  return result;
}

constexpr float anyError = 1e9F;
constexpr std::size_t pointSize = sizeof(std::array<float, 3>);

}  // namespace

ChainResult measureEdgeChain(const std::vector<YardstickMesh>& meshes) {
  return measureChain(meshes, [](unsigned* to, const YardstickMesh& level, std::size_t target) {
    return meshopt_simplify(to, level.corners.data(), level.corners.size(),
                            level.points.front().data(), level.points.size(), pointSize, target,
                            anyError, 0, nullptr);
  });
}

ChainResult measureClusterChain(const std::vector<YardstickMesh>& meshes) {
  return measureChain(meshes, [](unsigned* to, const YardstickMesh& level, std::size_t target) {
    return meshopt_simplifySloppy(to, level.corners.data(), level.corners.size(),
                                  level.points.front().data(), level.points.size(), pointSize,
                                  target, anyError, nullptr);
  });
}

}  // namespace varimesh
