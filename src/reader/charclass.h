// Character classes of VRML 1.0 text, as tables over all bytes.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace varimesh {

// What a character may be part of.
enum CharClass : std::uint8_t {
  CHAR_DIGIT = 1,
  CHAR_HEX = 2,
  CHAR_UPPER = 4,
  CHAR_TYPE = 8,    // the name of an unknown node type, after its first capital
  CHAR_NAME = 16,   // a DEF name
  CHAR_BEGIN = 32,  // the first character of a DEF name
};

// What begins with a character, where no start condition says otherwise.
enum class Begin : std::uint8_t {
  Illegal,
  Blank,
  Newline,
  Comment,
  Quote,
  Number,
  Word,
  Character
};

struct CharTables {
  std::array<std::uint8_t, 256> classes{};
  std::array<Begin, 256> begins{};
};

consteval CharTables makeCharTables() {
  constexpr std::string_view digits = "0123456789";
  constexpr std::string_view upper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  constexpr std::string_view lower = "abcdefghijklmnopqrstuvwxyz";
  constexpr std::string_view typeSigns = "`!$%()*,-/:;<=>?@^_|~";
  constexpr std::string_view nameSigns = "`!$%&()*,-/:;<=>?@[]^_|~";
  CharTables tables;
  const auto add = [&tables](std::string_view characters, int classes) {
    for (const char c : characters) {
      std::uint8_t& entry = tables.classes[static_cast<unsigned char>(c)];
      entry = static_cast<std::uint8_t>(entry | classes);
    }
  };
  add(digits, CHAR_DIGIT | CHAR_HEX | CHAR_TYPE | CHAR_NAME);
  add("abcdefABCDEF", CHAR_HEX);
  add(upper, CHAR_UPPER | CHAR_TYPE | CHAR_NAME | CHAR_BEGIN);
  add(lower, CHAR_TYPE | CHAR_NAME | CHAR_BEGIN);
  add(typeSigns, CHAR_TYPE);
  add(nameSigns, CHAR_NAME | CHAR_BEGIN);

  const auto begin = [&tables](std::string_view characters, Begin what) {
    for (const char c : characters) tables.begins[static_cast<unsigned char>(c)] = what;
  };
  begin(" \t", Begin::Blank);
  begin("\n", Begin::Newline);
  begin("#", Begin::Comment);
  begin("\"", Begin::Quote);
  begin(digits, Begin::Number);
  begin("-.", Begin::Number);
  begin(upper, Begin::Word);
  begin(lower, Begin::Word);
  begin("|,{}[]()", Begin::Character);
  return tables;
}

inline constexpr CharTables charTables = makeCharTables();

constexpr bool hasClass(char c, CharClass wanted) {
  return (charTables.classes[static_cast<unsigned char>(c)] & wanted) != 0;
}
constexpr bool isDigit(char c) { return static_cast<unsigned char>(c - '0') < 10; }
constexpr Begin beginOf(char c) { return charTables.begins[static_cast<unsigned char>(c)]; }

}  // namespace varimesh
