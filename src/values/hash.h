// Mixing numbers into a hash.
#pragma once

#include <bit>
#include <cstdint>

namespace varimesh {

inline std::uint64_t mixHash(std::uint64_t hash, std::uint64_t number) {
  hash = (hash ^ number) * 0x9E3779B97F4A7C15U;
  return hash ^ (hash >> 29);
}

// 0.0 and -0.0 are equal, so they mix alike.
inline std::uint64_t mixHash(std::uint64_t hash, float number) {
  return mixHash(hash, std::uint64_t{std::bit_cast<std::uint32_t>(number + 0.0F)});
}

}  // namespace varimesh
