// What is written about the program is what the program is: its options, its sections and all its
// diagnostics are in the manual, and the completions know the same options.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <set>
#include <string>

#include "driver/texts.h"
#include "program.h"

namespace varimesh {
namespace {

namespace fs = std::filesystem;

const fs::path root = VARIMESH_SOURCE_DIR;

std::string replaceAll(const std::string& text, const char* pattern, const char* replacement) {
  return std::regex_replace(text, std::regex(pattern), replacement);
}

// The first group of the pattern, wherever it matches.
std::set<std::string> findAll(const std::string& text, const char* pattern) {
  const std::regex regex(pattern);
  std::set<std::string> found;
  for (std::sregex_iterator it(text.begin(), text.end(), regex), end; it != end; ++it) {
    found.insert((*it)[1]);
  }
  return found;
}

// The manual as plain text on one line: requests and fonts gone, escapes resolved.
std::string readManual() {
  std::string text = readFile(root / "docs/varimesh.1.in");
  text = replaceAll(text, "\\\\f(CR|.)", "");
  text = replaceAll(text, "\\n\\.[A-Z]+ ?", "\n");
  text = replaceAll(text, "\\\\-", "-");
  text = replaceAll(text, "\\\\\\(aq", "'");
  text = replaceAll(text, "\\\\\\(ga", "`");
  text = replaceAll(text, "\"", "");
  return replaceAll(text, "\\s+", " ");
}

// Every option, short and long.
std::set<std::string> getOptions() {
  std::set<std::string> options = findAll(texts::options, "\\((-.) \\| --");
  options.merge(findAll(texts::options, "\\| (--[a-z]+)\\)"));
  return options;
}

TEST(Docs, TheManualTheCompletionsAndTheUsageTextHaveTheSameOptions) {
  const std::set<std::string> options = getOptions();
  EXPECT_EQ(options.size(), 40U);

  // In the manual an option is explained where its names stand after a request.
  const std::string manual = replaceAll(readFile(root / "docs/varimesh.1.in"), "\\\\-", "-");
  std::set<std::string> explained = findAll(manual, "\\n\\.BR (-.) \", \" --");
  explained.merge(findAll(manual, "\\n\\.BR -. \", \" (--[a-z]+)"));
  EXPECT_EQ(explained, options);

  const std::string bash = readFile(root / "completions/varimesh.bash");
  const std::size_t offers = bash.rfind("compgen -W");
  EXPECT_EQ(findAll(bash.substr(offers, bash.find('"', bash.find('"', offers) + 1) - offers),
                    "\\s(-[^-\\s]|--[a-z]+)(?=\\s)"),
            [&] {
              std::set<std::string> offered = options;
              offered.insert("-W");  // compgen's own
              return offered;
            }());

  const std::string zsh = readFile(root / "completions/_varimesh");
  std::set<std::string> offered = findAll(zsh, "\\{(-.),--");
  offered.merge(findAll(zsh, ",(--[a-z]+)\\}"));
  EXPECT_EQ(offered, options);
}

TEST(Docs, TheManualAndTheCompletionsHaveTheSameSections) {
  const std::set<std::string> sections =
      findAll(readFile(root / "src/driver/commandline.cpp"), "\\{\"([a-z]+)\",\\s*\\{");
  EXPECT_EQ(sections.size(), 11U);
  const std::string manual = readManual();
  const std::string verbose =
      manual.substr(manual.find("VERBOSE OUTPUT default"),
                    manual.find("all-nodes.wrl") - manual.find("VERBOSE OUTPUT default"));
  const std::string bash = readFile(root / "completions/varimesh.bash");
  const std::string zsh = readFile(root / "completions/_varimesh");
  for (const std::string& section : sections) {
    EXPECT_NE(verbose.find(section), std::string::npos) << section;
    EXPECT_NE(zsh.find("'" + section + "["), std::string::npos) << section;
  }
  std::string offered = *findAll(bash, "sections=\"([^\"]*)\"").begin() + ' ';
  EXPECT_EQ(findAll(offered, "([a-z]+) "), sections);
}

// Every text that goes to standard error, cut where a value is filled in, is in the manual.
TEST(Docs, TheManualExplainsEveryDiagnostic) {
  const std::string manual = readManual();
  const std::regex call("(?:error|warning|fail|usage|fprintf|fputs|findFault|return) ?\\(?[^;{]*;");
  int found = 0;
  for (const auto& entry : fs::recursive_directory_iterator(root / "src")) {
    if (!entry.is_regular_file() || entry.path().filename() == "names.h") continue;
    const std::string source = replaceAll(readFile(entry.path()), "//[^\\n]*", "");
    for (std::sregex_iterator it(source.begin(), source.end(), call), end; it != end; ++it) {
      const std::string text = it->str();
      const bool isFault =
          text.starts_with("return \"") && entry.path().filename() == "commandline.cpp";
      const bool isToStream = text.starts_with("fp") && text.find("stderr") != std::string::npos;
      const bool isCall = text.starts_with("error") || text.starts_with("warning") ||
                          text.starts_with("fail") || text.starts_with("usage");
      if (!isFault && !isToStream && !isCall) continue;
      if (text.find("usage: %s") != std::string::npos) continue;
      for (const std::string& literal : findAll(text, "\"([^\"]*)\"")) {
        // At the places of values and line ends.
        const std::string pieces = replaceAll(literal, "%\\.\\*s|%\\.1s|%[sdf]|\\\\n", "\n") + '\n';
        for (std::string piece : findAll(pieces, "([^\\n]+)\\n")) {
          piece = replaceAll(piece, "^[\\s:]+|[\\s:]+$", "");
          if (std::count_if(piece.begin(), piece.end(), [](char c) { return c > ' '; }) < 6)
            continue;
          ++found;
          EXPECT_NE(manual.find(piece), std::string::npos)
              << "'" << piece << "' in " << entry.path();
        }
      }
    }
  }
  EXPECT_GT(found, 50);
}

// Links between the texts lead somewhere.
TEST(Docs, LinksLeadToFiles) {
  std::vector<fs::path> files{root / "README.md", root / "CONTRIBUTING.md", root / "CHANGELOG.md"};
  for (const auto& entry : fs::directory_iterator(root / "docs")) files.push_back(entry.path());
  for (const fs::path& file : files) {
    if (file.extension() != ".md") continue;
    for (const std::string& link : findAll(readFile(file), "\\]\\(([^)#:]+)[^):]*\\)")) {
      EXPECT_TRUE(exists(file.parent_path() / link)) << link << " in " << file;
    }
  }
  // Files named in the description of the code.
  const std::string text = readFile(root / "docs/architecture.md");
  const std::set<std::string> names = findAll(text, "`([a-z]+/[a-z0-9_]+\\.(?:cpp|h))`");
  EXPECT_GT(names.size(), 20U);
  for (const std::string& name : names) {
    EXPECT_TRUE(exists(root / "src" / name) || exists(root / name)) << name;
  }
}

}  // namespace
}  // namespace varimesh
