// What the operating system says of this process.
#pragma once

#include <cstddef>

namespace varimesh {

// Processor time used so far, for the program and by the system on its behalf, in seconds.
[[nodiscard]] double getProcessorTime();

// The most memory that was resident since the start or the last reset, in bytes; 0 if not known.
[[nodiscard]] std::size_t getPeakMemory();
// Starts anew from what is resident now, once what is free has gone back to the system. Without
// effect where the system does not allow it.
void resetPeakMemory();

// Keeps what is printed on standard output from being seen, for as long as it lives.
class QuietOutput {
 public:
  QuietOutput();
  ~QuietOutput();
  QuietOutput(const QuietOutput&) = delete;
  QuietOutput& operator=(const QuietOutput&) = delete;

 private:
  int saved_;
};

}  // namespace varimesh
