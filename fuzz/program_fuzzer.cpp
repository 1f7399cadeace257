// The whole program on bytes: the first ones choose the options, the rest is the scene.
#include "end_of_run.h"
#include "lod/octreecoordset.h"
#include "reader/parser.h"
#include "scene/node.h"
#include "shapes/faceset.h"

namespace varimesh {
namespace {

void runProgram(std::string_view input) {
  setDefaults();
  Bytes bytes(input);
  const auto flags = bytes.take<std::uint8_t>();
  Node::nolods = flags & 1;
  yacc_nolods = Node::nolods;
  const bool join = (flags & 2) != 0;
  if ((flags & 1) == 0 && (flags & 4) != 0) Node::extractlod = bytes.below(6);
  FaceSet::nolines = (flags & 8) != 0 ? 1 : 0;
  FaceSet::noquads = (flags & 16) != 0 ? 1 : 0;
  if ((flags & 32) != 0) {
    CoordSet::minDiff = static_cast<float>(bytes.below(256) - 64) / 100;
    OctreeCoordSet::weightAlgErrorArea = static_cast<float>(bytes.below(4) - 1);
    OctreeCoordSet::weightAlgErrorVolume = static_cast<float>(bytes.below(4) - 1);
    OctreeCoordSet::weightAlgWeightedMean = static_cast<float>(bytes.below(4) - 1);
  }
  if ((flags & 64) != 0) {
    global_indent = bytes.below(20) - 5;
    global_tab = bytes.below(20) - 5;
    global_longcpl = bytes.below(20) - 5;
    global_floatcpl = bytes.below(20) - 5;
  }
  writeScene(bytes.getRest(), join);
}

}  // namespace
}  // namespace varimesh

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  varimesh::attempt(varimesh::runProgram, {reinterpret_cast<const char*>(data), size});
  return 0;
}
