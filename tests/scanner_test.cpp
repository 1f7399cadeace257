#include "reader/scanner.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "values/value.h"

namespace varimesh {
namespace {

// The last token in a notation of its own: 5, 1.5f, <string>, name:x, type:Foo, body:{}, list:[],
// otherwise as written, with "@line" where the token carries its line.
std::string describe(int token) {
  char number[32] = "";
  std::string text(yylval.text);
  switch (token) {
    case TOKEN_INTEGER: return std::to_string(yylval.integer);
    case TOKEN_FLOAT:
      std::snprintf(number, sizeof number, "%gf", double{yylval.real});
      return number;
    case TOKEN_STRING: return "<" + text + ">";
    case TOKEN_NAME: return "name:" + text;
    case TOKEN_FIELDLIST: return "list:" + text;
    case TOKEN_UNKNOWNTYPE: return "type:" + text;
    case TOKEN_UNKNOWNBODY: return "body:" + text;
    default: break;
  }
  text = yytext;
  const bool hasLine = token == TOKEN_USE || (token >= TOKEN_NODE && token < TOKEN_FIELD);
  return hasLine ? text + "@" + std::to_string(yylval.integer) : text;
}

// What is left of the text.
std::string scanRest() {
  std::string tokens;
  while (const int token = yylex()) {
    if (!tokens.empty()) tokens += ' ';
    tokens += describe(token);
  }
  EXPECT_EQ(yytext, "");
  return tokens;
}

std::string scan(std::string_view text) {
  lex_setText(text);
  return scanRest();
}

// The tokens, and what went to standard error.
struct Loud {
  std::string tokens;
  std::string messages;
};
Loud scanLoud(std::string_view text) {
  testing::internal::CaptureStderr();
  Loud result;
  result.tokens = scan(text);
  result.messages = testing::internal::GetCapturedStderr();
  return result;
}

// One warning on line 1 for each of the characters.
std::string illegal(std::string_view characters) {
  std::string messages;
  for (const char c : characters) {
    messages += std::string("warning: 1: skipping illegal input >") + c + "<\n";
  }
  return messages;
}

struct Case {
  std::string_view text;
  std::string_view tokens;
  std::string_view skipped = "";  // illegal characters on line 1
};
void check(std::initializer_list<Case> cases) {
  for (const Case& c : cases) {
    const Loud result = scanLoud(c.text);
    EXPECT_EQ(result.tokens, c.tokens) << c.text;
    EXPECT_EQ(result.messages, illegal(c.skipped)) << c.text;
  }
}

TEST(Scanner, LongestMatchOfWords) {
  for (const EnumWord& e : enumWords) EXPECT_EQ(scan(e.word), std::to_string(e.value));
  check({{"Separator{Separatorx", "Separator@1 { type:Separatorx"},
         {"SEPARATOR", "type:SEPARATOR"},
         {"TRUE,FALSE", "type:TRUE,FALSE"},
         {"PER_VERTEX PER_VERTEX_INDEXED PER_FACE_INDEXED", "6 7 5"},
         {"onx heightAngles height", "on heightAngle height", "xs"},
         {"separator", "", "separator"},
         {"stringscaleFactor fields", "string scaleFactor fields"},
         {"Coordinate3 Coordinate2 {}", "Coordinate3@1 type:Coordinate2 body: {}"},
         {"E5 e5 E-5x {}", "0f 0f type:E-5x body: {}"},
         {"5emissiveColor", "5 emissiveColor"}});
}

TEST(Scanner, NumberForms) {
  check(
      {{"0 5 -5 017 0x1F 0Xa", "0 5 -5 15 31 0 type:Xa"},
       {"-0 00 007 08 018 1. .5 1e5 -.5e-1", "-0f 0f 7f 8f 18f 1f 0.5f 100000f -0.05f"},
       {"- . -. -- e1 -e1 .e1", "0f 0f 0f 0f 0f 0f 0f 0f"},
       {"1.2.3 1-2 --5 017.5 017e1 -017 0x1F.5", "1.2f 0.3f 1 -2 0f -5 17.5f 170f -17f 31 0.5f"},
       {"5e 5e+ +5 0x 0xg", "5 5 5 0 0", "ee++xxg"},
       {"5e5e5", "500000f 0f"},
       {"2147483647 2147483648 -2147483648 -2147483649 99999999999999999999",
        "2147483647 2147483647 -2147483648 -2147483648 2147483647"},
       {"0xffffffff 0x80000000 0x100000000 037777777777 040000000000", "-1 -2147483648 -1 -1 -1"}});
}

// As a token and as an element of a list.
void expectStrtod(const std::string& text) {
  const auto bits = [](float number) { return std::bit_cast<std::uint32_t>(number); };
  const auto expected = static_cast<float>(std::strtod(text.c_str(), nullptr));
  lex_setText(text);
  ASSERT_EQ(yylex(), TOKEN_FLOAT) << text;
  ASSERT_EQ(bits(yylval.real), bits(expected)) << text;
  lex_setText(text + "]");
  std::vector<float> list;
  ASSERT_TRUE(lex_readElements(list)) << text;
  ASSERT_EQ(bits(list.at(0)), bits(expected)) << text;
}

TEST(Scanner, FloatsAreConvertedAsStrtodDoes) {
  // Their digits are too many for one division of exact numbers: it would give another single.
  for (const char* text : {".56310680508613591", "2.4716747999191282", "30.3837137222290057"}) {
    expectStrtod(text);
  }
  std::mt19937 random(1);
  const auto pick = [&random](unsigned n) { return static_cast<int>(random() % n); };
  for (int i = 0; i < 20000 && !testing::Test::HasFailure(); ++i) {
    std::string text = pick(2) != 0 ? "-" : "";
    for (int n = pick(i % 10 == 0 ? 30 : 12); n >= 0; --n)
      text += static_cast<char>('0' + pick(10));
    text += '.';
    for (int n = pick(18); n > 0; --n) text += static_cast<char>('0' + pick(10));
    if (pick(2) != 0) text += "e" + std::to_string(pick(50) - 45);
    expectStrtod(text);
  }
}

TEST(Scanner, FloatsBeyondSinglePrecisionSaturate) {
  const Loud result = scanLoud("1e38 3.4028235e38 3.5e38\n-1e400 1e-50 1e-400 0e999");
  EXPECT_EQ(result.tokens, "1e+38f 3.40282e+38f 3.40282e+38f -3.40282e+38f 0f 0f 0f");
  EXPECT_EQ(result.messages,
            "warning: 1: number >3.5e38< out of range\n"
            "warning: 2: number >-1e400< out of range\n");
}

TEST(Scanner, NamesAfterDefAndUse) {
  check({{"DEF a.b", "DEF name:a 0f", "b"},
         {"DEF Separator Separator", "DEF name:Separator Separator@1"},
         {"DEF [x]&(1) on", "DEF name:[x]&(1) on"},
         {"DEF 7a b", "DEF 7 name:a", "b"},
         {"DEF -5 -5", "DEF name:-5 -5"},
         {"DEF -.5 DEF", "DEF -0.5f name:DEF"},
         {"DEF +'\\a{", "DEF name:a {", "+'\\"},
         {"DEF \"x\"", "DEF <x>"}});
  EXPECT_EQ(scan("#\nUSE # x\n\n y"), "USE@2 name:y");
  EXPECT_EQ(lex_line, 4);
}

TEST(Scanner, StringsAreKeptAsWritten) {
  check({{R"("" "a\"b\\" "#x" "{[(")", R"(<> <a\"b\\> <#x> <{[(>)"},
         {"\"#\n# a\" \"b\\\n\\n\"", "<#\n# a> <b\\\n\\n>"},
         {"\"open", ""},
         {"\"open\\", "", "\\"}});
  lex_setText("\"a\nb\"");
  EXPECT_EQ(yylex(), TOKEN_STRING);
  EXPECT_EQ(yytext, "a\nb\"");
  EXPECT_EQ(lex_line, 2);
  lex_setText("\"a\\\nb\n\"");
  EXPECT_EQ(yylex(), TOKEN_STRING);
  EXPECT_EQ(lex_line, 3);
}

TEST(Scanner, FieldLists) {
  check({{"fields [ SFLong x ] on", "fields list:[ SFLong x ] on"},
         {"fields \n # ]\n [# ]\n# ]\n a # ]", "fields list:[# ]\n# ]\n a # ]"},
         {"fields [# a ]", "fields list:[# a ]"},  // no newline: no comment
         {"fields [[\"]", "fields list:[[\"]"},
         {"fields [ a", "fields"},
         {"fields 5 [", "fields 5"}});
}

TEST(Scanner, UnknownBodies) {
  check({{"Foo { a { } }on", "type:Foo body: { a { } } on"},
         {"Foo\n#}\n{#}\n# {\n a # }", "type:Foo body:\n#}\n{#}\n# {\n a # }"},
         {"Foo# {\n}", "type:Foo body:# {\n}"},
         {"Foo{\"}", "type:Foo body:{\"}", ""},
         {"Foo { {}", "type:Foo"},
         {"Foo \n }}on", "type:Foo } } on"}});
  EXPECT_EQ(scan("\nFoo\n{\n} Bar\n{}"), "type:Foo body:\n{\n} type:Bar body:\n{}");
  EXPECT_EQ(lex_idline, 4);
  EXPECT_EQ(lex_line, 5);
}

TEST(Scanner, WordsOfBitMasks) {
  check({{"(SIDES|BOTTOM)", "( 1 | 2 )"},
         {"( SIDES | TOP ) TOP|x {}", "( 1 | 4 ) type:TOP|x body: {}"},
         {"parts(ALL)FOO)", "parts ( 0 ) type:FOO)"},
         {"(FOO|5)", "( | 5 )", "FOO"}});
}

TEST(Scanner, LinesCommentsAndIllegalCharacters) {
  Loud result = scanLoud("#VRML V1.0 ascii\r\non\r\n\r\n\f# no newline");
  EXPECT_EQ(result.tokens, "on");
  EXPECT_EQ(result.messages.find("warning: 2: skipping illegal input >\r<\n"
                                 "warning: 3: skipping illegal input >\r<\n"
                                 "warning: 4: skipping illegal input >\f<\n"
                                 "warning: 4: skipping illegal input >#<\n"
                                 "warning: 4: skipping illegal input >n<\n"),
            0u);
  using namespace std::string_view_literals;
  result = scanLoud("on\0\xff off"sv);
  EXPECT_EQ(result.tokens, "on");
  EXPECT_EQ(result.messages.find("warning: 1: skipping illegal input ><\n"
                                 "warning: 1: skipping illegal input >\xff<\n"),
            0u);
}

TEST(Scanner, ManyCommentSignsWithoutNewlineTakeLinearTime) {
  const Loud result = scanLoud(std::string(20000, '#'));
  EXPECT_EQ(result.tokens, "");
  EXPECT_EQ(result.messages, illegal(std::string(20000, '#')));
}

TEST(Scanner, ReadsFilesAndPipes) {
  const std::string text = std::string(200000, ' ') + "on\n5";
  std::FILE* file = std::tmpfile();
  std::fputs(text.c_str(), file);
  std::rewind(file);
  ASSERT_TRUE(lex_setInput(file));
  std::fclose(file);
  EXPECT_EQ(scanRest(), "on 5");
  EXPECT_EQ(lex_line, 2);

  file = popen("i=0; while [ $i -lt 9000 ]; do echo '123456789'; i=$((i+1)); done", "r");
  ASSERT_TRUE(lex_setInput(file));
  pclose(file);
  EXPECT_EQ(scanRest().size(), 9000u * 10 - 1);
  EXPECT_EQ(lex_line, 9001);
  lex_release();
  EXPECT_EQ(yylex(), TOKEN_END);

  file = std::fopen("/", "r");
  testing::internal::CaptureStderr();
  EXPECT_FALSE(lex_setInput(file));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "input in flex scanner failed\n");
  std::fclose(file);
}

// The rest of these tests does not tell integers from floats, as the elements of a list do not.
std::string anyNumber(float value) {
  char number[32];
  std::snprintf(number, sizeof number, "%.9g ", double{value});
  return number;
}

std::string describeAny(int token) {
  if (token == TOKEN_INTEGER) return anyNumber(static_cast<float>(yylval.integer));
  if (token == TOKEN_FLOAT) return anyNumber(yylval.real);
  return describe(token) + " ";
}

std::string describeAny(const std::vector<int>& list, std::size_t i) {
  return anyNumber(static_cast<float>(list[i]));
}
std::string describeAny(const std::vector<float>& list, std::size_t i) {
  return anyNumber(list[i]);
}
std::string describeAny(const std::vector<Vec2>& list, std::size_t i) {
  return anyNumber(list[i].x) + anyNumber(list[i].y);
}
std::string describeAny(const std::vector<Vec>& list, std::size_t i) {
  return anyNumber(list[i].x) + anyNumber(list[i].y) + anyNumber(list[i].z);
}

template <class Element>
std::string scanLane() {
  std::string tokens;
  std::vector<Element> list;
  const bool atBracket = lex_readElements(list);
  for (std::size_t i = 0; i < list.size(); ++i) {
    tokens += describeAny(list, i);
    if (i + 1 < list.size() || !atBracket) tokens += ", ";
  }
  return tokens;
}

// All tokens, the last line and the messages. With an element type, the fast lane is tried before
// every token but bodies.
template <class Element = void>
std::string scanAny(const std::string& text) {
  testing::internal::CaptureStderr();
  lex_setText(text);
  std::string result;
  for (int token = -1; token != TOKEN_END;) {
    if constexpr (!std::is_void_v<Element>) {
      if (token != TOKEN_UNKNOWNTYPE) result += scanLane<Element>();
    }
    token = yylex();
    result += describeAny(token);
  }
  return result + std::to_string(lex_line) + "\n" + testing::internal::GetCapturedStderr();
}

TEST(Scanner, FastLaneEqualsScanningTokenByToken) {
  constexpr std::string_view pieces[] = {
      "1", "2.5",  "-3",  "7",    "0",   "8 ",    "9 9 ",  "1 2 3,", "4 5 6,", ",",
      ",", ",",    ",",   " ",    " ",   " ",     "\t",    "\n",     "\r",     "]",
      "[", "0x1F", "017", "08",   "-0",  "5e",    "--",    "+5",     ".",      "e5",
      "#", "x",    "on",  "TRUE", "# ]", "1.2.3", "1e400", "1e-9"};
  std::mt19937 random(7);
  for (int i = 0; i < 3000 && !testing::Test::HasFailure(); ++i) {
    std::string text;
    for (auto n = random() % 40; n > 0; --n) text += pieces[random() % std::size(pieces)];
    const std::string expected = scanAny(text);
    EXPECT_EQ(scanAny<int>(text), expected) << text;
    EXPECT_EQ(scanAny<float>(text), expected) << text;
    EXPECT_EQ(scanAny<Vec2>(text), expected) << text;
    EXPECT_EQ(scanAny<Vec>(text), expected) << text;
  }
}

TEST(Scanner, FastLaneReservesWhatTheListNeeds) {
  lex_setText(" 1 2 3, 4 5 6,\n7 8 9 ] , , ,");
  std::vector<Vec> points;
  EXPECT_TRUE(lex_readElements(points));
  EXPECT_EQ(points.size(), 3u);
  EXPECT_EQ(points.capacity(), 3u);
  EXPECT_EQ(lex_line, 2);
  EXPECT_EQ(yylex(), ']');
}

}  // namespace
}  // namespace varimesh
