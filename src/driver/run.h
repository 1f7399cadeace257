// The run of the program once the command line is known: read, resolve, join, write.
#pragma once

#include "driver/commandline.h"

namespace varimesh {

// Turns the input file into the output file. Returns on success and ends the process otherwise.
void run(const RunSettings& settings);

// What `new` does when there is no memory left: ends the process with a message.
[[noreturn]] void outOfMemory();

}  // namespace varimesh
