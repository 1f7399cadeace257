#include "driver/streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

namespace varimesh {

void guardStandardStreams() {
  // The lowest free number is taken, so this fills a gap. Writing to it fails, as it should.
  int descriptor = 0;
  while (descriptor <= STDERR_FILENO && descriptor >= 0) {
    descriptor = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  }
  if (descriptor > STDERR_FILENO) ::close(descriptor);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

bool closeStandardOutput() {
  const bool hadFailed = std::ferror(stdout) != 0;
  if (std::fflush(stdout) == 0 && !hadFailed) return true;
  std::fputs("error: cannot write standard output\n", stderr);
  return false;
}

}  // namespace varimesh
