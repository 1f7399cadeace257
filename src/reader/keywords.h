// The scanner's keywords: everything that is a token by its spelling.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "reader/names.h"

namespace varimesh {

struct Keyword {
  std::string_view word;
  int token = TOKEN_END;
  int value = 0;  // the number that an enumeration word stands for
};

inline constexpr std::size_t keywordCount =
    3 + (nodeIdString.size() - 1) + (fieldIdString.size() - 1) + enumWords.size();

struct KeywordTable {
  // Sorted by first character, and under each the longer words first.
  std::array<Keyword, keywordCount> keywords{};
  // Where the words with a given first character begin.
  std::array<std::size_t, 129> begins{};
};

consteval KeywordTable makeKeywordTable() {
  KeywordTable table;
  std::size_t n = 0;
  table.keywords[n++] = {"DEF", TOKEN_DEF};
  table.keywords[n++] = {"USE", TOKEN_USE};
  table.keywords[n++] = {"fields", TOKEN_FIELDS};
  for (int i = 0; i < NODE_NONE; ++i) {
    table.keywords[n++] = {nodeIdString[static_cast<std::size_t>(i)], TOKEN_NODE + i};
  }
  for (int i = 0; i < FIELD_NONE; ++i) {
    table.keywords[n++] = {fieldIdString[static_cast<std::size_t>(i)], TOKEN_FIELD + i};
  }
  for (const EnumWord& e : enumWords) table.keywords[n++] = {e.word, TOKEN_INTEGER, e.value};

  std::sort(table.keywords.begin(), table.keywords.end(), [](const Keyword& a, const Keyword& b) {
    if (a.word[0] != b.word[0]) return a.word[0] < b.word[0];
    return a.word.size() > b.word.size();
  });
  for (const Keyword& keyword : table.keywords) {
    for (auto c = static_cast<std::size_t>(keyword.word[0]) + 1; c < table.begins.size(); ++c) {
      ++table.begins[c];
    }
  }
  return table;
}

inline constexpr KeywordTable keywordTable = makeKeywordTable();
static_assert(std::ranges::all_of(keywordTable.keywords,
                                  [](const Keyword& keyword) { return keyword.word.size() > 1; }));

// The longest keyword that the text begins with, or null.
inline const Keyword* findKeyword(std::string_view text) {
  if (text.size() < 2) return nullptr;
  const auto first = static_cast<unsigned char>(text[0]);
  if (first >= 128) return nullptr;
  for (std::size_t i = keywordTable.begins[first]; i < keywordTable.begins[first + 1u]; ++i) {
    const Keyword& keyword = keywordTable.keywords[i];
    // Most words that begin with the same letter go on with another.
    if (text[1] == keyword.word[1] && text.starts_with(keyword.word)) return &keyword;
  }
  return nullptr;
}

}  // namespace varimesh
