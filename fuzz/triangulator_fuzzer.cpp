// The triangulator on any outline: flat or not, with repeated corners, crossing itself.
#include <vector>

#include "end_of_run.h"
#include "triangulate/triangulator.h"

namespace varimesh {
namespace {

void triangulate(std::string_view input) {
  setDefaults();
  Bytes bytes(input);
  const int kind = bytes.below(4);
  Triangulator::fixedSeed = static_cast<unsigned>(bytes.below(256));
  Triangulator triangulator;
  // Two outlines, one after the other, since the tables are used again.
  for (int round = 0; round < 2 && !bytes.isEmpty(); ++round) {
    triangulator.reset();
    const int limit = 3 + bytes.below(253);
    int n = 0;
    for (; n < limit && !bytes.isEmpty(); ++n) {
      if (kind == 0) {  // any finite numbers
        const auto number = [&] {
          const auto value = bytes.take<float>();
          return double{value - value == 0 ? value : 0.0F};
        };
        const double x = number();
        const double y = number();
        triangulator.addPoint(x, y, number());
      } else {  // on a grid, in a plane of some slope
        const double x = bytes.below(32);
        const double y = bytes.below(32);
        triangulator.addPoint(x, y, kind == 1 ? 0 : kind == 2 ? x - 2 * y : bytes.below(8));
      }
    }
    if (triangulator.run() == 0) continue;
    if (n > 2 && triangulator.getCount() != n - 2) report("wrong number of triangles");
    for (int i = 0; i < triangulator.getCount(); ++i) {
      for (int k = 0; k < 3; ++k) {
        const int corner = triangulator.getPoint(i, k);
        if (corner < 0 || corner >= n) report("a corner that is not there");
      }
    }
  }
}

}  // namespace
}  // namespace varimesh

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  varimesh::attempt(varimesh::triangulate, {reinterpret_cast<const char*>(data), size});
  return 0;
}
