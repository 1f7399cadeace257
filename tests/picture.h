// What a scene shows, and what the program makes of a scene, both from its text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace varimesh {

// Everything that a scene draws, in no particular order: each polygon, segment, point and simple
// shape in world coordinates with the materials, normals, texture coordinates and texture that it
// has there, as text. Two scenes look alike if their pictures are equal. The text must be a valid
// scene; children of LOD and Switch groups are all drawn.
std::vector<std::string> drawScene(std::string_view text);

struct Conversion {
  std::string text;  // the file written
  int removed = 0;   // nodes that joining has removed
};

// Runs a scene through the program's phases. A fault in the scene ends the process.
Conversion convertScene(std::string_view text, bool isJoining);

}  // namespace varimesh
