#include <cstdio>
#include <cstdlib>
#include <new>

#include "driver/commandline.h"
#include "driver/run.h"
#include "driver/texts.h"

int main(int argc, char** argv) {
  std::fputs(varimesh::texts::banner().c_str(), stdout);
  std::fflush(stdout);
  std::set_new_handler(varimesh::outOfMemory);
  varimesh::run(varimesh::parseCommandLine(argc, argv));
  return EXIT_SUCCESS;
}
