// The script that converts a tree of scenes: broken files among good ones, and carrying on.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "program.h"

namespace varimesh {
namespace {

namespace fs = std::filesystem;

const std::string triangle = R"(#VRML V1.0 ascii
Coordinate3 { point [ 0 0 0, 1 0 0, 0 1 0 ] }
IndexedFaceSet { coordIndex [ 0, 1, 2, -1 ] }
)";

struct ConvertTreeTest : testing::Test {
  TempDir dir;

  ProgramResult run(std::vector<std::string> options = {},
                    const std::vector<std::string>& programOptions = {}) {
    std::vector<std::string> words{VARIMESH_SOURCE_DIR "/scripts/convert-tree", "-p",
                                   VARIMESH_PROGRAM};
    words.insert(words.end(), options.begin(), options.end());
    words.insert(words.end(), {"in", "out", "--"});
    words.insert(words.end(), programOptions.begin(), programOptions.end());
    return runCommand("/bin/bash", words, dir.path());
  }

  // The last line that starts with a count.
  static std::string summary(const ProgramResult& result) {
    const std::size_t end = result.out.find(" failed\n");
    if (end == std::string::npos) return result.out + result.err;
    const std::size_t begin = result.out.rfind('\n', end);
    return result.out.substr(begin == std::string::npos ? 0 : begin + 1, end + 7 - begin - 1);
  }

  void makeOlder(const std::string& name) const {
    const fs::path path = dir.path() / name;
    last_write_time(path, last_write_time(path) - std::chrono::hours(1));
  }
};

TEST_F(ConvertTreeTest, BrokenScenesAmongGoodOnes) {
  dir.write("in/a.wrl", triangle);
  dir.write("in/deep/er/a.wrl", triangle);
  dir.write("in/a name's \"blank\".WRL", triangle);
  dir.write("in/broken.wrl", "Separator {\n");
  dir.write("in/deep/unnamed.wrl", "#VRML V1.0 ascii\nUSE Nobody\n");
  dir.write("in/levels.wrl", "LOD { }");
  dir.write("in/readme.txt", "no scene");

  ProgramResult result = run();
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(summary(result), "6 scenes: 3 made, 0 kept, 3 failed");
  EXPECT_NE(result.out.find("] FAILED broken.wrl: error: 2: parse error"), std::string::npos);
  for (const std::string name : {"out/a.wrl", "out/deep/er/a.wrl", "out/a name's \"blank\".WRL"}) {
    EXPECT_NE(dir.read(name).find("LOD {"), std::string::npos) << name;
  }
  EXPECT_FALSE(dir.has("out/broken.wrl"));
  EXPECT_FALSE(dir.has("out/readme.txt"));
  EXPECT_EQ(dir.read("out/failures.txt"),
            "broken.wrl\n"
            "    error: 2: parse error at or before ''\n\n"
            "deep/unnamed.wrl\n"
            "    error: 2-2 : USE identifier >Nobody< not defined\n\n"
            "levels.wrl\n"
            "    error: this file already contains Levels of Detail\n\n");
  EXPECT_FALSE(dir.has("out/warnings.txt"));

  // Other options reach the program.
  result = run({"-f"}, {"-n", "-N"});
  EXPECT_EQ(summary(result), "6 scenes: 4 made, 0 kept, 2 failed");
  EXPECT_EQ(dir.read("out/a.wrl").find("LOD {"), std::string::npos);
}

TEST_F(ConvertTreeTest, CarriesOnWithWhatIsMissingOrOld) {
  for (const std::string name : {"in/a.wrl", "in/b.wrl", "in/c.wrl"}) dir.write(name, triangle);
  EXPECT_EQ(summary(run()), "3 scenes: 3 made, 0 kept, 0 failed");
  EXPECT_EQ(summary(run()), "3 scenes: 0 made, 3 kept, 0 failed");

  fs::remove(dir.path() / "out/a.wrl");
  makeOlder("out/b.wrl");
  ProgramResult result = run();
  EXPECT_EQ(summary(result), "3 scenes: 2 made, 1 kept, 0 failed");
  EXPECT_EQ(result.status, 0);

  // What was made of an older source goes with a source that fails; the list tells why.
  dir.write("in/b.wrl", "}");
  makeOlder("out/b.wrl");
  EXPECT_EQ(summary(run()), "3 scenes: 0 made, 2 kept, 1 failed");
  EXPECT_FALSE(dir.has("out/b.wrl"));
  EXPECT_TRUE(dir.has("out/failures.txt"));

  fs::remove(dir.path() / "in/b.wrl");
  EXPECT_EQ(summary(run()), "2 scenes: 0 made, 2 kept, 0 failed");
  EXPECT_FALSE(dir.has("out/failures.txt"));

  // A wrong command leaves what is good.
  EXPECT_EQ(summary(run({"-f"}, {"--nonsense"})), "2 scenes: 0 made, 0 kept, 2 failed");
  EXPECT_TRUE(dir.has("out/a.wrl"));
}

TEST_F(ConvertTreeTest, ATargetInsideTheSourceIsNoSource) {
  dir.write("in/a.wrl", triangle);
  const std::vector<std::string> words{
      VARIMESH_SOURCE_DIR "/scripts/convert-tree", "-q", "-p", VARIMESH_PROGRAM, "in", "in/out"};
  for (const char* expected :
       {"1 scenes: 1 made, 0 kept, 0 failed\n", "1 scenes: 0 made, 1 kept, 0 failed\n"}) {
    EXPECT_EQ(runCommand("/bin/bash", words, dir.path()).out, expected);
  }
}

}  // namespace
}  // namespace varimesh
