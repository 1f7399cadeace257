#include "driver/option.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace varimesh {
namespace {

// One option of each kind, and a command line for them.
struct OptionTest : testing::Test {
  OptionFlag flag{"flag", "f"};
  OptionString text{"text", "t"};
  OptionLong number{"number", "n", 7};
  OptionDouble real{"real", "r", 2.5};
  std::string errors;

  // What parsing answers; the remaining words are left in `words`.
  bool parse(std::vector<std::string> line) {
    line_ = std::move(line);
    line_.insert(line_.begin(), "prog");
    std::vector<char*> argv;
    for (std::string& word : line_) argv.push_back(word.data());
    auto argc = static_cast<int>(argv.size());
    testing::internal::CaptureStderr();
    const bool ok = Option::parse(argc, argv.data());
    errors = testing::internal::GetCapturedStderr();
    words.assign(argv.begin() + 1, argv.begin() + argc);
    return ok;
  }
  std::vector<std::string> words;

 private:
  std::vector<std::string> line_;  // parameters stay where they are
};

using Words = std::vector<std::string>;

TEST_F(OptionTest, MayBeWithoutWordsAndInAnyOrder) {
  int argc = 0;
  char* argv[] = {nullptr};
  EXPECT_TRUE(Option::parse(argc, argv));
  EXPECT_EQ(argc, 0);
  // Options need not go in the order in which they came.
  std::optional<OptionFlag> first(std::in_place, "first", "1");
  const OptionFlag second("second", "2");
  first.reset();
  EXPECT_EQ(Option::findByLongName("first"), nullptr);
  EXPECT_EQ(Option::findByLongName("second"), &second);
}

TEST_F(OptionTest, ReportsTheFirstFault) {
  const auto fault = [this](const Words& line) {
    // Each fault wants options that have not been met yet.
    OptionFlag flag2{"flag", "f"};
    OptionString text2{"text", "t"};
    OptionDouble real2{"real", "r", 1.0};
    EXPECT_FALSE(parse(line));
    EXPECT_EQ(words.size(), line.size());
    return errors;
  };
  EXPECT_EQ(fault({"-"}), "prog: unknown option '-'\n");
  EXPECT_EQ(fault({"--"}), "prog: unknown option '--'\n");
  EXPECT_EQ(fault({"-ft"}), "prog: unknown option '-ft'\n");
  EXPECT_EQ(fault({"--f"}), "prog: unknown option '--f'\n");
  EXPECT_EQ(fault({"-flag"}), "prog: unknown option '-flag'\n");
  EXPECT_EQ(fault({"--text=x", "-q"}), "prog: unknown option '--text=x'\n");
  EXPECT_EQ(fault({"--flag", "a", "-f"}), "prog: option '-f' specified twice\n");
  EXPECT_EQ(fault({"-t", "-f"}), "missing option parameter\n");
  EXPECT_EQ(fault({"-r", "-1"}), "missing option parameter\n");
  EXPECT_EQ(fault({"a", "-t"}), "missing option parameter\n");
}

TEST_F(OptionTest, ConvertsNumbersAsFarAsTheyGo) {
  const auto toLong = [](const char* word) {
    OptionLong option{"x", "x"};
    option.setParameter(word);
    return option.getValue();
  };
  EXPECT_EQ(toLong(" -1"), -1);
  EXPECT_EQ(toLong("12x"), 12);
  EXPECT_EQ(toLong("abc"), 0);
  EXPECT_EQ(toLong(""), 0);
  EXPECT_EQ(toLong("2147483648"), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(toLong(" -99999999999999999999"), std::numeric_limits<std::int32_t>::min());

  ASSERT_TRUE(parse({"-r", "1.5x"}));
  EXPECT_EQ(real.getValue(), 1.5);
  real.setParameter("");
  EXPECT_EQ(real.getValue(), 0.0);
}

}  // namespace
}  // namespace varimesh
