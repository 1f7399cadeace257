// Scenes to measure with, written as VRML 1.0 text: ordinary ones, and ones that try to bring the
// program down. The same kind, size and seed always give the same bytes.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>
#include <string_view>

namespace varimesh {

struct SceneKind {
  std::string_view name;
  std::string_view unit;  // what the size counts
  std::string_view description;
};

std::span<const SceneKind> getSceneKinds();

// Writes a scene of about that size. False when there is no such kind, or when writing failed.
bool writeScene(std::FILE* file, std::string_view kind, int size, std::uint64_t seed);

}  // namespace varimesh
