// Reading with the Coin scene-graph library.
#include <Inventor/SoDB.h>
#include <Inventor/SoInput.h>
#include <Inventor/nodes/SoSeparator.h>

#include "process.h"
#include "yardsticks.h"

namespace varimesh {

double measureSceneGraphRead(const std::string& fileName) {
  SoDB::init();
  const double start = getProcessorTime();
  SoInput input;
  SoSeparator* const scene =
      input.openFile(fileName.c_str()) != 0 ? SoDB::readAll(&input) : nullptr;
  return scene != nullptr ? getProcessorTime() - start : -1;
}

}  // namespace varimesh
