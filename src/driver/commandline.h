// The command line: the program's twenty options, what is refused, and where their values go.
#pragma once

#include <string>

namespace varimesh {

// What a run needs to know beside the parameters that the other folders keep as statics.
struct RunSettings {
  std::string inputName;
  std::string outputName;
  bool searchCamera = true;  // take the viewing angle from the scene's first camera
  bool join = false;
  bool printTree = false;
};

// Reads and checks the command line and stores the parameters in their statics. Ends the run after
// --copyright, and on any fault: then no file has been touched.
RunSettings parseCommandLine(int argc, char** argv);

// Says what is wrong and how the program is called, and ends the run.
[[noreturn]] void usage(const char* programName, const char* message);

// The next section of a list separated by '+'. `list` moves past it, to null after the last one.
std::string getSection(const char*& list);

}  // namespace varimesh
