// The program from outside: command line, streams, exit status and files. And the one thing that
// cannot be seen from there: which parameter each option sets.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "driver/commandline.h"
#include "lod/octreecoordset.h"
#include "program.h"
#include "reader/parser.h"
#include "scene/attributenodes.h"
#include "shapes/facenode.h"
#include "shapes/faceset.h"
#include "shapes/linenode.h"
#include "triangulate/triangulator.h"

namespace varimesh {
namespace {

using Words = std::vector<std::string>;

const std::string banner = "VARIMESH Level of Detail Generator for VRML 1.0 Release 1.01\n\n";

const std::string usageText = std::string("usage: ") + VARIMESH_PROGRAM + R"( [options] inputfile

   general-options:
      (-o | --output) outputfile          (-j | --join)
      (-n | --nolods)                     (-C | --copyright)
      (-v | --verbose) section['+'section]*
   lod-options:
      (-1 | --errorarea) weight           (-m | --mindiff) percentage
      (-2 | --errorvolume) weight         (-x | --extract) lod
      (-3 | --weightedmean) weight        (-l | --nolines)
      (-c | --cameraheightangle) radian   (-q | --noquads)
      (-e | --errorrange) percentage      (-s | --quadsplitangle) radian
   format-options:
      (-I | --indent) count               (-D | --decimalcountperline) count
      (-T | --tab) count                  (-F | --floatcountperline) count
      (-N | --noindent)

)";

// A triangle and a pentagon in one face set, seen by a camera.
const std::string scene = R"(#VRML V1.0 ascii
DEF Top Separator {
  PerspectiveCamera { heightAngle 0.5 }
  Coordinate3 { point [ 0 0 0, 2 0 0, 3 1 0, 2 2 0, 0 2 0, 0 0 1.5 ] }
  DEF Kite IndexedFaceSet { coordIndex [ 0, 1, 2, 3, 4, -1, 0, 1, 5, -1 ] }
}
)";

// The text with what stands between these two marks replaced.
std::string replaceBetween(std::string text, std::string_view before, std::string_view after,
                           const std::string& replacement) {
  const std::size_t begin = text.find(before) + before.size();
  return text.replace(begin, text.find(after, begin) - begin, replacement);
}

struct CliTest : testing::Test {
  TempDir dir;

  ProgramResult run(const Words& arguments, std::string_view input = {}) {
    return runProgram(arguments, dir.path(), input);
  }

  // The file that the program makes of that text, with its date blotted out.
  std::string convert(std::string_view text, Words arguments = {}) {
    dir.write("in.wrl", text);
    arguments.insert(arguments.end(), {"-o", "result.wrl", "in.wrl"});
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    return replaceBetween(dir.read("result.wrl"), "\ndate:    ", "\n\"", "TODAY");
  }
};

TEST_F(CliTest, CommandLineFaultsShowTheUsageAndTouchNoFile) {
  dir.write("in.wrl", scene);
  const std::string program = VARIMESH_PROGRAM;
  const struct {
    Words arguments;
    std::string message;
  } cases[] = {
      {{}, "no input file specified"},
      {{"-o", "in.wrl"}, "no input file specified"},
      {{"in.wrl", "b", "-v", "bad"}, "too much parameters"},
      {{"-ej", "in.wrl"}, program + ": unknown option '-ej'\ninvalid option"},
      {{"-j", "--join"}, program + ": option '--join' specified twice\ninvalid option"},
      {{"in.wrl", "-o"}, "missing option parameter\ninvalid option"},
      {{"-v", "", "in.wrl"}, "invalid verbose parameter"},
      {{"-v", "coord+", "in.wrl"}, "invalid verbose parameter"},
      {{"-v", "+coord", "in.wrl"}, "invalid verbose parameter"},
      {{"-v", "face++coord", "in.wrl"}, "invalid verbose parameter"},
      {{"-v", "Coord", "in.wrl"}, "invalid verbose parameter"},
      {{"-v", "tri", "-e", "0", "in.wrl"}, "invalid verbose parameter"},
      {{"-o", std::string(1025, 'x'), "-e", "0", "in.wrl"}, "outfile path too long"},
      {{"in/" + std::string(1017, 'x') + ".wrl"}, "outfile path too long"},
      {{"-n", "-x", " -1", "in.wrl"}, "option --extract can't be less than zero"},
      {{"-e", "0", "-n", "-x", "3", "in.wrl"},
       "options --nolods and --extract can't be used simultaneous"},
      {{"-e", "0", "in.wrl"}, "illegal errorrange"},
      {{"-e", " -2", "in.wrl"}, "illegal errorrange"},
      {{"-e", "nan", "in.wrl"}, "illegal errorrange"},
  };
  for (const auto& [arguments, message] : cases) {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, 1) << message;
    EXPECT_EQ(result.err, std::string(message).append("\n\n").append(usageText));
    EXPECT_EQ(result.out, banner);
  }
  EXPECT_EQ(dir.read("in.wrl"), scene);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);
}

TEST_F(CliTest, CopyrightNeedsNoInput) {
  for (const Words& arguments : {Words{"-C"}, Words{"a", "--copyright", "b", "-v", "bad"}}) {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, banner +
                              "Copyright (C) 2026 the VARIMESH project\n"
                              "Authors: the VARIMESH developers\n"
                              "URL: https://varimesh.example/\n\n");
    EXPECT_EQ(result.err, "");
  }
}

TEST_F(CliTest, OutputNames) {
  const struct {
    std::string input;
    Words options;
    std::string output;
  } cases[] = {
      {"models/chair.wrl", {}, "chair.lod.wrl"},
      {"models/chair.wrl", {"-n"}, "chair.opt.wrl"},
      {"models/chair.wrl", {"-x", "2"}, "chair.2.wrl"},
      {"chair.old.wrl", {"--extract", "99999999999"}, "chair.old.2147483647.wrl"},
      {"chair", {"-x", "many"}, "chair.0"},
      {"a/b.c/model", {}, "model.lod"},
      {".hidden", {}, ".lod.hidden"},
      {"dot.", {}, "dot.lod."},
      {"chair", {"-o", "a/chair"}, "a/chair"},
  };
  for (const auto& [input, options, output] : cases) {
    dir.write(input, "");
    Words arguments = options;
    arguments.push_back(input);
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(result.out.ends_with("success. (" + output + ")\n")) << result.out;
    EXPECT_TRUE(dir.has(output)) << output;
  }

  // The longest name that is not too long.
  std::string longest(1024, '/');
  longest.replace(0, 1, ".").replace(1020, 4, "last");
  EXPECT_EQ(run({"-o", longest, "chair"}).status, 0);
  EXPECT_TRUE(dir.has("last"));
}

TEST_F(CliTest, AnnouncesThePhases) {
  dir.write("in.wrl", scene);
  const std::string start = banner + "parsing ...\ndependencies ...\n";
  const std::string camera = "searching for a camera ...\n";
  const std::string write =
      "writing ...\n5-5 IndexedFaceSet: lod - 0 1 2 \nsuccess. (in.lod.wrl)\n";
  EXPECT_EQ(run({"in.wrl"}).out, start + camera + write);
  EXPECT_EQ(run({"-c", "1", "in.wrl"}).out, start + write);
  EXPECT_EQ(run({"-n", "in.wrl"}).out, start + "writing ...\nsuccess. (in.opt.wrl)\n");
  const std::string join = "joining ... 0 Nodes removed.\n";
  EXPECT_EQ(run({"-j", "-v", "join", "in.wrl"}).out, start + camera + join + write);
  // Nothing is joined, so nothing is said of it.
  EXPECT_EQ(run({"-v", "join", "in.wrl"}).out, start + camera + write);
}

TEST_F(CliTest, ListsTheTreeBetweenThePhases) {
  dir.write("in.wrl", scene);
  EXPECT_EQ(run({"-v", "tree+face", "-T", "0", "-n", "in.wrl"}).out,
            banner +
                "parsing ...\n"
                "dependencies ...\n"
                "\n   0-   0 "
                "\n   2-   6     Separator DEF Top"
                "\n   0-   0         Info"
                "\n   3-   3         PerspectiveCamera"
                "\n   4-   4         Coordinate3"
                "\n   5-   5         IndexedFaceSet DEF Kite ( coordIndex 10)"
                "\nwriting ...\n"
                "face: 5-5 IndexedFaceSet: accesses: coo(4-4) mat(default) nor(default) "
                "tex(default)\n"
                "face: 5-5 IndexedFaceSet: list=2 set=4 (quad=0 tri=4 line=0)\n"
                "success. (in.opt.wrl)\n");
}

const std::string header = R"(string "Created by VARIMESH - Level of Detail Generator Release 1.01

authors: the VARIMESH developers
contact: the VARIMESH project
         URL: https://varimesh.example/
date:    TODAY
"
)";

TEST_F(CliTest, TheHeaderNodeComesFirst) {
  const std::string info = "Info {\n" + header + "}\n";
  const auto placed = [this](std::string_view body) { return convert(body, {"-N"}); };
  const std::string first = "#VRML V1.0 ascii\n";
  EXPECT_EQ(placed(""), first + "Separator {\n" + info + "}\n");
  EXPECT_EQ(placed("DEF A Separator { Cube { } }"),
            first + "DEF A Separator {\n" + info + "Cube {\n}\n}\n");
  EXPECT_EQ(placed("Group { }"), first + "Group {\n" + info + "}\n");
  EXPECT_EQ(placed("TransformSeparator { Cube { } }"),
            first + "TransformSeparator {\n" + info + "Cube {\n}\n}\n");
  EXPECT_EQ(placed("Switch { whichChild 0 Cube { } }"),
            first + "Separator {\n" + info + "Switch {\nwhichChild 0\nCube {\n}\n}\n}\n");
  EXPECT_EQ(placed("WWWAnchor { }"), first + "Separator {\n" + info + "WWWAnchor {\n}\n}\n");
  EXPECT_EQ(placed("Separator { } Separator { }"),
            first + "Separator {\n" + info + "Separator {\n}\nSeparator {\n}\n}\n");
}

TEST_F(CliTest, WritesAScene) {
  const std::string cube = R"(#VRML V1.0 ascii
Separator {
  Coordinate3 { point [ 0 0 0, 1 0 0, 1 1 0, 0 1 0, 0 0 1, 1 0 1, 1 1 1, 0 1 1, 1 0 0 ] }
  IndexedFaceSet { coordIndex [ 0,3,2,1,-1, 4,5,6,7,-1, 0,8,5,4,-1, 1,2,6,5 ] }
  AsciiText { string [ "a", "b" ] }
}
)";
  EXPECT_EQ(convert(cube, {"-c", "0.5", "-I", "2", "-T", "4", "-D", "9", "-F", "7"}),
            "#VRML V1.0 ascii\n"
            "Separator {\n"
            "  Info {\n"
            "\t" +
                header +
                "  }\n"
                "  Coordinate3 {\n"
                "\tpoint [ 0 0 0,1 0 0,1 1 0,\n"
                "\t\t\t0 1 0,0 0 1,1 0 1,\n"
                "\t\t\t1 1 1,0 1 1 ]\n"
                "  }\n"
                "  LOD {\n"
                "\trange [171.313563]\n"
                "\tcenter 0.5 0.5 0.5\n"
                "\tIndexedFaceSet {\n"
                "\t  coordIndex [ 0,3,2,1,-1,4,5,6,7,-1,\n"
                "\t\t\t\t   0,1,5,4,-1,1,2,6,5,-1 ]\n"
                "\t}\n"
                "\tSeparator {\n"
                "\t}\n"
                "  }\n"
                "  AsciiText {\n"
                "\tstring [ \"a\",\n"
                "\t\t\t\"b\" ]\n"
                "  }\n"
                "}\n");
}

TEST_F(CliTest, TheFirstCameraSetsTheAngleUnlessItIsGiven) {
  const auto range = [this](const std::string& text, const Words& options) {
    const std::string written = convert(text, options);
    const std::size_t begin = written.find("range [");
    return written.substr(begin, written.find(']', begin) - begin);
  };
  const auto withCamera = [](const std::string& node) {
    return replaceBetween(scene, "Separator {\n", "  Coordinate3", node + "\n");
  };
  const std::string wide = range(scene, {"-c", "0.785398"});
  const std::string narrow = range(scene, {"-c", "0.5"});
  ASSERT_NE(wide, narrow);
  EXPECT_EQ(range(scene, {}), narrow);
  EXPECT_EQ(range(withCamera(""), {}), wide);
  EXPECT_EQ(range(withCamera("PerspectiveCamera { }"), {}), wide);
  EXPECT_EQ(range(withCamera("OrthographicCamera { } PerspectiveCamera { heightAngle 0.5 }"
                             "PerspectiveCamera { heightAngle 0.6 }"),
                  {}),
            narrow);
}

TEST_F(CliTest, ADifferenceThatIsNoNumberIsTheLeast) {
  const std::string asteroid =
      readFile(std::filesystem::path(VARIMESH_SOURCE_DIR) / "examples" / "asteroid.wrl");
  EXPECT_EQ(convert(asteroid, {"-m", "nan"}), convert(asteroid, {"-m", "0"}));
}

TEST_F(CliTest, FilesThatCannotBeUsed) {
  dir.write("in.wrl", scene);
  ProgramResult result = run({"none.wrl"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "error: cannot open none.wrl\nerror: No such file or directory\n");
  EXPECT_EQ(result.out, banner);
  EXPECT_FALSE(dir.has("none.lod.wrl"));

  result = run({"-o", "no/out.wrl", "in.wrl"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "error: cannot create no/out.wrl\nerror: No such file or directory\n");
  EXPECT_EQ(result.out, banner);

  result = run({"-o", "out.wrl", "."});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "input in flex scanner failed\n");
  EXPECT_EQ(result.out, banner + "parsing ...\n");

  result = run({"-n", "-o", "/dev/full", "in.wrl"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "error: cannot write /dev/full\nerror: No space left on device\n");
  EXPECT_EQ(result.out, banner + "parsing ...\ndependencies ...\nwriting ...\n");

  // An input that fails while it is read, and outputs that are no files.
  EXPECT_EQ(run({"-o", "out.wrl", "/proc/self/mem"}).err, "input in flex scanner failed\n");
  result = run({"-o", "in.wrl/out.wrl", "in.wrl"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "error: cannot create in.wrl/out.wrl\nerror: Not a directory\n");
  result = run({"-o", ".", "in.wrl"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "error: cannot create .\nerror: Is a directory\n");
  EXPECT_EQ(dir.read("in.wrl"), scene);
}

// A disk that is full, wherever in the output that happens.
TEST_F(CliTest, AFileThatMayNotGrow) {
  const std::string letters =
      readFile(std::filesystem::path(VARIMESH_SOURCE_DIR) / "examples" / "letters.wrl");
  dir.write("in.wrl", letters);
  const std::string command = std::string(VARIMESH_PROGRAM) + " -o out.wrl in.wrl";
  ASSERT_EQ(run({"-o", "out.wrl", "in.wrl"}).status, 0);
  const std::size_t blocks = dir.read("out.wrl").size() / 1024;
  ASSERT_GT(blocks, 5);
  for (std::size_t limit = 1; limit <= blocks; limit += 3) {
    const ProgramResult result = runCommand(
        "/bin/sh", {"-c", "ulimit -f " + std::to_string(limit) + "; exec " + command}, dir.path());
    EXPECT_EQ(result.status, 1) << limit;
    EXPECT_TRUE(result.err.ends_with("error: cannot write out.wrl\nerror: File too large\n"))
        << limit << result.err;
  }
}

// What it says has nowhere to go: closed, full, or without a reader. The file is written all the
// same.
TEST_F(CliTest, StandardOutputThatCannotBeWritten) {
  dir.write("in.wrl", scene);
  const std::string program = VARIMESH_PROGRAM;
  for (const std::string& command :
       {program + " in.wrl >&-", program + " in.wrl <&- >&-", program + " in.wrl >/dev/full",
        "(sleep 0.2; " + program + " in.wrl; echo $? >status) | : ; exit $(cat status)"}) {
    const ProgramResult result = runCommand("/bin/sh", {"-c", command}, dir.path());
    EXPECT_EQ(result.status, 1) << command;
    EXPECT_EQ(result.err, "error: cannot write standard output\n") << command;
    const std::string written = dir.read("in.lod.wrl");
    EXPECT_TRUE(written.starts_with("#VRML") && written.ends_with("}\n")) << command;
    std::filesystem::remove(dir.path() / "in.lod.wrl");
  }
}

TEST_F(CliTest, RefusesToWriteOverItsInput) {
  dir.write("in.wrl", scene);
  create_hard_link(dir.path() / "in.wrl", dir.path() / "hard.wrl");
  create_symlink(dir.path() / "in.wrl", dir.path() / "soft.wrl");
  for (const std::string output : {"in.wrl", "./in.wrl", "hard.wrl", "soft.wrl"}) {
    const ProgramResult result = run({"-o", output, "in.wrl"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err,
              "error: cannot create " + output + "\nerror: input and output are the same file\n");
    EXPECT_EQ(dir.read("in.wrl"), scene);
  }
}

TEST_F(CliTest, AFailedParseLeavesTheOutputEmpty) {
  dir.write("bad.wrl", "Separator {\n  Cube { }\n  Sphere { width 1 }\n}\n");
  dir.write("bad.lod.wrl", "old");
  // Deleting what was read so far is no joining.
  const ProgramResult result = run({"-j", "-v", "join", "bad.wrl"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, banner + "parsing ...\nfailed.\n");
  EXPECT_EQ(result.err, "error: 3: parse error at or before 'width'\n");
  EXPECT_TRUE(dir.has("bad.lod.wrl"));
  EXPECT_EQ(dir.read("bad.lod.wrl"), "");
}

TEST_F(CliTest, WhatItWroteIsReadAgainOnlyWithoutLevels) {
  dir.write("in.wrl", scene);
  ASSERT_EQ(run({"-o", "once.wrl", "in.wrl"}).status, 0);
  const ProgramResult refused = run({"once.wrl"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.err, "error: this file already contains Levels of Detail\n");
  EXPECT_EQ(refused.out, banner + "parsing ...\nfailed.\n");

  const ProgramResult accepted = run({"-n", "once.wrl"});
  EXPECT_EQ(accepted.status, 0);
  EXPECT_EQ(accepted.err, "");
}

TEST_F(CliTest, ReadsAStream) {
  EXPECT_EQ(run({"-o", "out.wrl", "/dev/stdin"}, scene).status, 0);
  EXPECT_NE(dir.read("out.wrl").find("LOD {"), std::string::npos);
}

TEST_F(CliTest, EndsWithAMessageWhenMemoryRunsOut) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer needs more address space than any limit would leave";
#endif
  dir.write("big.wrl", "Coordinate3 { point [" + std::string(std::size_t{64} << 20, ' ') + "] }");
  const ProgramResult result = runCommand(
      "/bin/sh", {"-c", std::string("ulimit -v 60000; exec ") + VARIMESH_PROGRAM + " big.wrl"},
      dir.path());
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "error: out of memory\n");
}

// Whichever allocation fails, and whether or not there is memory again afterwards.
TEST_F(CliTest, AnyAllocationMayFail) {
  const std::filesystem::path examples = std::filesystem::path(VARIMESH_SOURCE_DIR) / "examples";
  dir.write("in.wrl", readFile(examples / "all-nodes.wrl") + readFile(examples / "letters.wrl") +
                          "Own { fields [ SFLong a ] a 1 } DEF Box Cube { } USE Box\n");
  for (const std::string after : {"FAIL_ONCE=1", "FAIL_EVER=1"}) {
    int failures = 0;
    for (int number = 1;; number += 1 + number / 12) {
      const ProgramResult result =
          runCommand("/usr/bin/env",
                     {after, "FAIL_AT=" + std::to_string(number), VARIMESH_OUT_OF_MEMORY, "-j",
                      "-v", "all+line+join+tree+triangulator", "in.wrl"},
                     dir.path());
      if (result.err.find("no memory\n") == std::string::npos) {
        EXPECT_EQ(result.status, 0) << result.err;
        break;
      }
      ++failures;
      ASSERT_EQ(result.status, 1) << after << number << result.err;
      ASSERT_TRUE(result.err.ends_with("no memory\nerror: out of memory\n"))
          << number << result.err;
    }
    EXPECT_GT(failures, 60);
  }
}

// The parameters that the command line sets.
struct ParameterTest : testing::Test {
  const std::vector<int*> flags = {
      &Triangulator::verbose,     &CoordNode::verbose, &MaterialNode::verbose, &NormalNode::verbose,
      &TextureCoordNode::verbose, &FaceNode::verbose,  &LineNode::verbose,     &Node::verbosejoin};

  void TearDown() override {
    parse({});
    for (int* flag : flags) *flag = 0;
    Node::nolods = yacc_nolods = FaceSet::nolines = FaceSet::noquads = 0;
  }

  static RunSettings parse(Words words) {
    words.insert(words.begin(), "prog");
    words.emplace_back("in.wrl");
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    return parseCommandLine(static_cast<int>(argv.size()), argv.data());
  }

  // The verbose flags that a list of sections sets, as digits in the order of `flags`, with the
  // listing of the tree behind them.
  std::string sections(const std::string& list) {
    for (int* flag : flags) *flag = 0;
    const bool tree = parse({"-v", list}).printTree;
    std::string digits;
    for (const int* flag : flags) digits += static_cast<char>('0' + *flag);
    return digits + (tree ? '1' : '0');
  }
};

TEST_F(ParameterTest, DefaultsAndValues) {
  parse({});
  EXPECT_EQ(OctreeCoordSet::weightAlgErrorArea, 8.0F);
  EXPECT_EQ(OctreeCoordSet::weightAlgErrorVolume, 1.0F);
  EXPECT_EQ(OctreeCoordSet::weightAlgWeightedMean, 0.0F);
  EXPECT_EQ(CoordSet::cameraHeightAngle, 0.785398F);
  EXPECT_EQ(CoordSet::errorRange, 2.0F);
  EXPECT_EQ(CoordSet::minDiff, 0.2F);
  EXPECT_FLOAT_EQ(Face::splitCosinus, std::cos(0.174533F));
  EXPECT_EQ(Node::extractlod, -1);
  EXPECT_EQ(global_noindent, 0);

  const RunSettings settings = parse(
      {"-1", "2", "-2", "nan", "-3", "inf", "-c", "1.5", "-e", "0.5", "-m", "50", "-l", "-q",
       "-s", "0", "-I", "1",   "-T", "2",   "-N", "-D",  "3",  "-F",  "4",  "-x", "5",  "-j"});
  EXPECT_EQ(OctreeCoordSet::weightAlgErrorArea, 2.0F);
  EXPECT_EQ(OctreeCoordSet::weightAlgErrorVolume, 0.0F);
  EXPECT_TRUE(std::isfinite(OctreeCoordSet::weightAlgWeightedMean));
  EXPECT_EQ(CoordSet::cameraHeightAngle, 1.5F);
  EXPECT_EQ(CoordSet::errorRange, 0.5F);
  EXPECT_EQ(CoordSet::minDiff, 0.5F);
  EXPECT_EQ(Face::splitCosinus, 1.0F);
  EXPECT_TRUE(FaceSet::nolines == 1 && FaceSet::noquads == 1 && Node::nolods == 0);
  EXPECT_TRUE(global_indent == 1 && global_tab == 2 && global_noindent == 1);
  EXPECT_TRUE(global_longcpl == 3 && global_floatcpl == 4);
  EXPECT_EQ(Node::extractlod, 5);
  EXPECT_TRUE(settings.join && !settings.searchCamera);

  EXPECT_FALSE(parse({"-n"}).searchCamera);
  EXPECT_TRUE(Node::nolods == 1 && yacc_nolods == 1);
}

TEST_F(ParameterTest, VerboseSections) {
  EXPECT_EQ(sections("all"), "111111000");
  EXPECT_EQ(sections("default"), "011111100");
  EXPECT_EQ(sections("all+line"), "111111100");
  EXPECT_EQ(sections("coord+face+coord"), "010001000");
  EXPECT_EQ(sections("triangulator"), "100000000");
  EXPECT_EQ(sections("material"), "001000000");
  EXPECT_EQ(sections("normal+texcoord"), "000110000");
  EXPECT_EQ(sections("line"), "000000100");
  EXPECT_EQ(sections("join"), "000000010");
  EXPECT_EQ(sections("tree"), "000000001");
}

}  // namespace
}  // namespace varimesh
