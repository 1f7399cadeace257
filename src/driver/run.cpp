#include "driver/run.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include "driver/scene.h"
#include "reader/parser.h"
#include "reader/scanner.h"

namespace varimesh {

namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// Standard output is buffered; what announces a phase must not wait there while the phase runs.
void announce(const char* text) {
  std::fputs(text, stdout);
  std::fflush(stdout);
}

// Ends the process because of a file, with the system's reason.
[[noreturn]] void fail(const char* verb, const std::string& name) {
  const int reason = errno;
  if (reason == ENOMEM) outOfMemory();  // opening a file takes memory, too
  std::fprintf(stderr, "error: cannot %s %s\n", verb, name.c_str());
  errno = reason;
  std::perror("error");
  std::exit(EXIT_FAILURE);
}

File openInput(const std::string& name) {
  File input(std::fopen(name.c_str(), "r"));
  if (!input) fail("open", name);
  return input;
}

bool isSameFile(std::FILE* file, const std::string& name) {
  struct stat a {};
  struct stat b {};
  return fstat(fileno(file), &a) == 0 && stat(name.c_str(), &b) == 0 && a.st_dev == b.st_dev &&
         a.st_ino == b.st_ino;
}

// Creates the output; the input is still to be read, so writing over it is refused.
File createOutput(const std::string& name, std::FILE* input) {
  if (isSameFile(input, name)) {
    std::fprintf(stderr, "error: cannot create %s\nerror: input and output are the same file\n",
                 name.c_str());
    std::exit(EXIT_FAILURE);
  }
  File output(std::fopen(name.c_str(), "w"));
  if (!output) fail("create", name);
  return output;
}

// Reads the scene; answers its top-level nodes.
NodeList parse(std::FILE* input) {
  announce("parsing ...\n");
  // Nodes that a failed parse drops are no business of joining.
  const int verboseJoin = std::exchange(Node::verbosejoin, 0);
  if (!lex_setInput(input)) std::exit(EXIT_FAILURE);
  if (yyparse() != 0) {
    std::puts("failed.");
    std::exit(EXIT_FAILURE);
  }
  lex_release();
  Node::verbosejoin = verboseJoin;
  return std::move(yacc_tree);
}

// Writes the scene and closes the file; a disk may be full until the very end.
void write(Scene& scene, File file, const std::string& name) {
  announce("writing ...\n");
  {
    Output output(file.get());
    scene.print(output);
    if (!output.flush()) fail("write", name);
  }
  if (std::fclose(file.release()) != 0) fail("write", name);
}

}  // namespace

void run(const RunSettings& settings) {
  const File input = openInput(settings.inputName);
  File output = createOutput(settings.outputName, input.get());

  auto scene = std::make_unique<Scene>(parse(input.get()));
  announce("dependencies ...\n");
  scene->resolveDependencies();
  if (settings.searchCamera) {
    announce("searching for a camera ...\n");
    scene->searchCamera();
  }
  if (settings.join) {
    announce("joining ...");
    std::printf(" %d Nodes removed.\n", scene->join());
  }
  Node::verbosejoin = 0;  // from here on nodes go without a word
  if (settings.printTree) scene->printTree();
  write(*scene, std::move(output), settings.outputName);
  std::printf("success. (%s)\n", settings.outputName.c_str());

  // The process is about to end: taking apart what may be millions of nodes and values would only
  // cost time. So the scene stays reachable, and is never destroyed.
  // Volatile, since nothing reads it: otherwise the store, and with it the pointer, would be gone.
  [[maybe_unused]] static Scene* volatile kept = nullptr;
  kept = scene.release();
}

void outOfMemory() {
  std::fputs("error: out of memory\n", stderr);
  std::exit(EXIT_FAILURE);
}

}  // namespace varimesh
