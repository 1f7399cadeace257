// The folders of the source depend on each other in one direction only.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace {

constexpr std::array<std::string_view, 7> folders = {"values", "data",   "lod",   "scene",
                                                     "shapes", "reader", "driver"};

// Whether a file in one folder may include a file. Each folder may include those before it; the
// triangulator stands alone, below the shapes; the table of names may be included from anywhere.
bool mayInclude(const std::string& from, const std::string& included) {
  const std::string to = included.substr(0, included.find('/'));
  if (to == from || included == "reader/names.h") return true;
  if (from == "triangulate") return false;
  if (to == "triangulate") return from == "shapes" || from == "driver";
  const auto rank = [](const std::string& name) {
    return std::find(folders.begin(), folders.end(), name) - folders.begin();
  };
  return rank(to) < rank(from);
}

TEST(Structure, IncludesPointOneWay) {
  const std::filesystem::path root = std::filesystem::path(VARIMESH_SOURCE_DIR) / "src";
  int includes = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
    if (!entry.is_regular_file()) continue;
    const std::string from = entry.path().parent_path().filename().string();
    std::ifstream file(entry.path());
    for (std::string line; std::getline(file, line);) {
      constexpr std::string_view directive = "#include \"";
      if (!line.starts_with(directive)) continue;
      const std::string included =
          line.substr(directive.size(), line.rfind('"') - directive.size());
      EXPECT_TRUE(mayInclude(from, included)) << entry.path() << " includes " << included;
      EXPECT_TRUE(included != "reader/names.h" || from != "triangulate") << entry.path();
      ++includes;
    }
  }
  EXPECT_GT(includes, 100);
}

}  // namespace
