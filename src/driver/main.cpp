#include <cstdio>
#include <cstdlib>
#include <new>

#include "driver/commandline.h"
#include "driver/run.h"
#include "driver/streams.h"
#include "driver/texts.h"

int main(int argc, char** argv) {
  varimesh::guardStandardStreams();
  std::set_new_handler(varimesh::outOfMemory);
  std::fputs(varimesh::texts::banner().c_str(), stdout);
  std::fflush(stdout);
  varimesh::run(varimesh::parseCommandLine(argc, argv));
  return varimesh::closeStandardOutput() ? EXIT_SUCCESS : EXIT_FAILURE;
}
