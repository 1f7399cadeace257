#include "driver/run.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "driver/texts.h"
#include "lod/coordset.h"
#include "reader/parser.h"
#include "reader/scanner.h"
#include "scene/attributenodes.h"
#include "scene/bindingnodes.h"
#include "scene/groupnodes.h"
#include "scene/node.h"
#include "scene/state.h"
#include "values/output.h"

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

// For a node that the program makes.
NodeInit made(NodeType type, int line) {
  NodeInit init;
  init.type = type;
  init.firstLine = init.lastLine = line;
  return init;
}

std::unique_ptr<Node> makeHeader() {
  const std::time_t now = std::time(nullptr);
  std::vector<std::string> text{texts::header(std::ctime(&now))};
  NodeInit init = made(NODE_Info, 0);
  init.fields.emplace_back(FIELD_string, std::make_unique<FString>(std::move(text)));
  return std::make_unique<Node>(std::move(init));
}

// Puts the header node first: into the group that holds the whole scene, or, when there is none,
// into a new separator round the scene. Other grouping nodes give their first child a meaning.
void insertHeader(NodeList& tree) {
  GroupNode* const top = tree.size() == 1 ? tree.front()->asGroup() : nullptr;
  if (top != nullptr && (top->type == NODE_Group || top->type == NODE_Separator ||
                         top->type == NODE_TransformSeparator)) {
    top->children.insert(top->children.begin(), makeHeader());
    return;
  }
  tree.insert(tree.begin(), makeHeader());
  auto separator =
      std::make_unique<SeparatorNode>(made(NODE_Separator, 0), std::exchange(tree, {}));
  tree.push_back(std::move(separator));
}

// The attribute nodes in force where a scene has set none. Shapes refer to them until the end.
struct DefaultNodes {
  CoordNode coord{made(NODE_Coordinate3, -1)};
  MaterialNode material{made(NODE_Material, -1)};
  NormalNode normal{made(NODE_Normal, -1)};
  TextureCoordNode textureCoord{made(NODE_TextureCoordinate2, -1)};
  TextureNode texture{made(NODE_Texture2, -1)};
};

void resolveDependencies(Node& root, DefaultNodes& defaults) {
  announce("dependencies ...\n");
  State state;
  state.coordNode = &defaults.coord;
  state.materialNode = &defaults.material;
  state.normalNode = &defaults.normal;
  state.textureCoordNode = &defaults.textureCoord;
  state.textureNode = &defaults.texture;
  root.setupDepends(state);
}

void searchCamera(Node& root) {
  announce("searching for a camera ...\n");
  Node* camera = nullptr;
  root.setupCamera(camera);
  if (camera == nullptr) return;
  if (const auto* angle = camera->getValue<FFloat>(FIELD_heightAngle)) {
    CoordSet::cameraHeightAngle = angle->values.front();
  }
}

void join(RootNode& root) {
  announce("joining ...");
  root.join();
  std::printf(" %d Nodes removed.\n", Node::removedcount);
}

void listTree(Node& root) {
  Output listing(stdout);
  root.printTree(listing, 0);
  listing.put('\n');
}

// Writes the tree, making the levels of detail on the way, and closes the file.
void write(Node& root, File file, const std::string& name) {
  announce("writing ...\n");
  {
    Output output(file.get());
    root.print(output, 0);
    if (!output.flush()) fail("write", name);
  }
  if (std::fclose(file.release()) != 0) fail("write", name);
}

}  // namespace

void run(const RunSettings& settings) {
  const File input = openInput(settings.inputName);
  File output = createOutput(settings.outputName, input.get());

  NodeList tree = parse(input.get());
  insertHeader(tree);
  // The process is about to end when the tree has been written: taking apart what may be millions
  // of nodes and values would only cost time. So the root stays reachable, and is never destroyed.
  static RootNode* root = nullptr;
  root = std::make_unique<RootNode>("#VRML V1.0 ascii", std::move(tree)).release();

  DefaultNodes defaults;
  resolveDependencies(*root, defaults);
  if (settings.searchCamera) searchCamera(*root);
  if (settings.join) join(*root);
  Node::verbosejoin = 0;  // from here on nodes go without a word
  if (settings.printTree) listTree(*root);
  write(*root, std::move(output), settings.outputName);

  std::printf("success. (%s)\n", settings.outputName.c_str());
}

void outOfMemory() {
  std::fputs("error: out of memory\n", stderr);
  std::exit(EXIT_FAILURE);
}

}  // namespace varimesh
