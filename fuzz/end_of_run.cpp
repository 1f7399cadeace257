#include "end_of_run.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "driver/scene.h"
#include "lod/octreecoordset.h"
#include "reader/parser.h"
#include "reader/scanner.h"
#include "shapes/face.h"
#include "shapes/faceset.h"
#include "triangulate/triangulator.h"

namespace {

bool isRunning = false;

// A file in memory.
class MemoryFile {
 public:
  MemoryFile() : file_(open_memstream(&text_, &size_)) {}
  ~MemoryFile() {
    std::fclose(file_);
    std::free(text_);
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  std::FILE* get() { return file_; }
  [[nodiscard]] std::string getText() const { return {text_, size_}; }

 private:
  char* text_ = nullptr;
  std::size_t size_ = 0;
  std::FILE* file_;
};

}  // namespace

extern "C" {
[[noreturn]] void __real_exit(int status);
[[noreturn]] void __wrap_exit(int status);

void __wrap_exit(int status) {
  if (isRunning) throw varimesh::EndOfRun{status};
  __real_exit(status);
}

int LLVMFuzzerInitialize(int*, char***) {
  if (std::freopen("/dev/null", "w", stdout) == nullptr) std::abort();
  return 0;
}
}

namespace varimesh {

bool attempt(void (*run)(std::string_view input), std::string_view input) {
  isRunning = true;
  bool isDone = true;
  try {
    run(input);
  } catch (const EndOfRun&) {
    isDone = false;
  }
  isRunning = false;
  Node::identifiers.clear();
  yacc_tree.clear();
  return isDone;
}

void report(const char* what) {
  std::fprintf(stderr, "FINDING: %s\n", what);
  std::abort();
}

std::string writeScene(std::string_view text, bool join) {
  Node::identifiers.clear();
  Node::removedcount = 0;
  lex_setText(text);
  if (yyparse() != 0) throw EndOfRun{1};
  Scene scene(std::exchange(yacc_tree, {}));
  scene.resolveDependencies();
  scene.searchCamera();
  if (join) scene.join();

  MemoryFile file;
  Output output(file.get());
  scene.print(output);
  output.flush();
  return file.getText();
}

void setDefaults() {
  Node::nolods = 0;
  Node::extractlod = -1;
  yacc_nolods = 0;
  FaceSet::nolines = 0;
  FaceSet::noquads = 0;
  CoordSet::minDiff = 0.2F;
  CoordSet::errorRange = 2.0F;
  CoordSet::cameraHeightAngle = 0.785398F;
  OctreeCoordSet::weightAlgErrorArea = 8.0F;
  OctreeCoordSet::weightAlgErrorVolume = 1.0F;
  OctreeCoordSet::weightAlgWeightedMean = 0.0F;
  global_indent = 4;
  global_tab = 8;
  global_noindent = 0;
  global_longcpl = 8;
  global_floatcpl = 6;
  global_cpl = 0;
  Triangulator::fixedSeed = 1;
}

}  // namespace varimesh
