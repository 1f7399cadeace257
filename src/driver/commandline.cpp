#include "driver/commandline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>

#include "driver/option.h"
#include "driver/streams.h"
#include "driver/texts.h"
#include "lod/coordset.h"
#include "lod/octreecoordset.h"
#include "reader/parser.h"
#include "scene/attributenodes.h"
#include "scene/node.h"
#include "shapes/face.h"
#include "shapes/facenode.h"
#include "shapes/faceset.h"
#include "shapes/linenode.h"
#include "triangulate/triangulator.h"
#include "values/output.h"

namespace varimesh {

namespace {

constexpr std::size_t longestOutputName = 1024;

struct Options {
  OptionString verbose{"verbose", "v"};
  OptionString output{"output", "o"};
  OptionFlag nolods{"nolods", "n"};
  OptionFlag join{"join", "j"};
  OptionFlag copyright{"copyright", "C"};
  OptionDouble errorarea{"errorarea", "1", 8.0};
  OptionDouble errorvolume{"errorvolume", "2", 1.0};
  OptionDouble weightedmean{"weightedmean", "3", 0.0};
  OptionDouble cameraheightangle{"cameraheightangle", "c", 0.785398};
  OptionDouble errorrange{"errorrange", "e", 2.0};
  OptionDouble mindiff{"mindiff", "m", 20.0};
  OptionLong extract{"extract", "x", -1};
  OptionFlag nolines{"nolines", "l"};
  OptionFlag noquads{"noquads", "q"};
  OptionDouble quadsplitangle{"quadsplitangle", "s", 0.174533};
  OptionLong indent{"indent", "I", 4};
  OptionLong tab{"tab", "T", 8};
  OptionFlag noindent{"noindent", "N"};
  OptionLong decimalcountperline{"decimalcountperline", "D", 8};
  OptionLong floatcountperline{"floatcountperline", "F", 6};
};

// The sections of --verbose and the flags that each one sets. "all" leaves out the lines, "default"
// the triangulator, and both leave out joining and the tree.
struct Section {
  std::string_view name;
  std::array<int*, 6> flags;  // filled up with null
  bool printTree = false;
};

constexpr std::array<Section, 11> sections = {{
    {"all",
     {&Triangulator::verbose, &CoordNode::verbose, &MaterialNode::verbose, &NormalNode::verbose,
      &TextureCoordNode::verbose, &FaceNode::verbose}},
    {"default",
     {&CoordNode::verbose, &MaterialNode::verbose, &NormalNode::verbose, &TextureCoordNode::verbose,
      &FaceNode::verbose, &LineNode::verbose}},
    {"triangulator", {&Triangulator::verbose}},
    {"coord", {&CoordNode::verbose}},
    {"material", {&MaterialNode::verbose}},
    {"normal", {&NormalNode::verbose}},
    {"texcoord", {&TextureCoordNode::verbose}},
    {"face", {&FaceNode::verbose}},
    {"line", {&LineNode::verbose}},
    {"join", {&Node::verbosejoin}},
    {"tree", {}, true},
}};

// Sets the flags of a section; false when there is no such section.
bool applySection(std::string_view name, bool& printTree) {
  for (const Section& section : sections) {
    if (section.name != name) continue;
    for (int* flag : section.flags) {
      if (flag != nullptr) *flag = 1;
    }
    printTree |= section.printTree;
    return true;
  }
  return false;
}

// The input name without its folders, and with a tag before the extension.
std::string deriveOutputName(std::string_view inputName, const std::string& tag) {
  const std::string base(inputName.substr(inputName.rfind('/') + 1));
  const std::size_t dot = base.rfind('.');
  if (dot == std::string::npos) return base + '.' + tag;
  return base.substr(0, dot) + '.' + tag + base.substr(dot);
}

std::string makeOutputName(const Options& options, std::string_view inputName) {
  if (options.output.isSpecified()) return options.output.getValue();
  if (options.extract.isSpecified()) {
    return deriveOutputName(inputName, std::to_string(options.extract.getValue()));
  }
  return deriveOutputName(inputName, options.nolods.isSpecified() ? "opt" : "lod");
}

// A weight that is not a number is no weight; an endless one is the largest, so that a measure of
// zero still counts as zero.
float weight(const OptionDouble& option) {
  constexpr double largest = std::numeric_limits<float>::max();
  const double value = option.getValue();
  return std::isnan(value) ? 0.0F : static_cast<float>(std::clamp(value, -largest, largest));
}

void storeParameters(const Options& options) {
  if (options.nolods.isSpecified()) Node::nolods = yacc_nolods = 1;
  if (options.nolines.isSpecified()) FaceSet::nolines = 1;
  if (options.noquads.isSpecified()) FaceSet::noquads = 1;
  Node::extractlod = options.extract.getValue();

  global_indent = options.indent.getValue();
  global_tab = options.tab.getValue();
  global_noindent = options.noindent.isSpecified() ? 1 : 0;
  global_longcpl = options.decimalcountperline.getValue();
  global_floatcpl = options.floatcountperline.getValue();

  OctreeCoordSet::weightAlgErrorArea = weight(options.errorarea);
  OctreeCoordSet::weightAlgErrorVolume = weight(options.errorvolume);
  OctreeCoordSet::weightAlgWeightedMean = weight(options.weightedmean);
  CoordSet::errorRange = static_cast<float>(options.errorrange.getValue());
  CoordSet::cameraHeightAngle = static_cast<float>(options.cameraheightangle.getValue());
  CoordSet::minDiff = static_cast<float>(options.mindiff.getValue() / 100.0);
  Face::splitCosinus = static_cast<float>(std::cos(options.quadsplitangle.getValue()));
}

// What is wrong with the values of the options, or null.
const char* findFault(const Options& options) {
  if (options.extract.isSpecified() && options.extract.getValue() < 0) {
    return "option --extract can't be less than zero";
  }
  if (options.extract.isSpecified() && options.nolods.isSpecified()) {
    return "options --nolods and --extract can't be used simultaneous";
  }
  // Not "at or below 0": that would let through what is not a number.
  if (!(options.errorrange.getValue() > 0)) return "illegal errorrange";
  return nullptr;
}

}  // namespace

RunSettings parseCommandLine(int argc, char** argv) {
  const char* const programName = argv[0];
  Options options;
  if (!Option::parse(argc, argv)) usage(programName, "invalid option");
  if (options.copyright.isSpecified()) {
    std::fputs(texts::notice().c_str(), stdout);
    std::exit(closeStandardOutput() ? EXIT_SUCCESS : EXIT_FAILURE);
  }
  if (argc < 2) usage(programName, "no input file specified");
  if (argc > 2) usage(programName, "too much parameters");

  RunSettings settings;
  settings.inputName = argv[1];
  if (options.verbose.isSpecified()) {
    for (const char* list = options.verbose.getValue(); list != nullptr;) {
      if (!applySection(getSection(list), settings.printTree)) {
        usage(programName, "invalid verbose parameter");
      }
    }
  }
  settings.outputName = makeOutputName(options, settings.inputName);
  if (settings.outputName.size() > longestOutputName) {
    usage(programName, "outfile path too long");
  }
  settings.searchCamera = !options.cameraheightangle.isSpecified() && !options.nolods.isSpecified();
  settings.join = options.join.isSpecified();

  storeParameters(options);
  if (const char* fault = findFault(options)) usage(programName, fault);
  return settings;
}

void usage(const char* programName, const char* message) {
  std::fprintf(stderr, "%s\n\nusage: %s [options] inputfile\n\n%s", message, programName,
               texts::options);
  std::exit(EXIT_FAILURE);
}

std::string getSection(const char*& list) {
  const char* const plus = std::strchr(list, '+');
  std::string section = plus != nullptr ? std::string(list, plus) : std::string(list);
  list = plus != nullptr ? plus + 1 : nullptr;
  return section;
}

}  // namespace varimesh
