// Writes a generated scene into a file.
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "scenes.h"

namespace {

template <class Number>
bool readNumber(std::string_view text, Number& number) {
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  return result.ec == std::errc() && result.ptr == end && number >= 0;
}

int usage() {
  std::fputs("usage: varimesh_make_scene KIND N FILE [SEED]\n\n", stderr);
  for (const auto& kind : varimesh::getSceneKinds()) {
    std::fprintf(stderr, "   %-20s %s (N: %s)\n", kind.name.data(), kind.description.data(),
                 kind.unit.data());
  }
  return EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  int size = 0;
  unsigned seed = 1;
  if (argc < 4 || argc > 5 || !readNumber(argv[2], size) ||
      (argc == 5 && !readNumber(argv[4], seed))) {
    return usage();
  }
  bool isKnown = false;
  for (const auto& kind : varimesh::getSceneKinds()) isKnown |= kind.name == argv[1];
  if (!isKnown) return usage();

  std::FILE* file = std::fopen(argv[3], "wb");
  const bool isWritten = file != nullptr && varimesh::writeScene(file, argv[1], size, seed);
  if (file == nullptr || std::fclose(file) != 0 || !isWritten) {
    std::perror(argv[3]);
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
