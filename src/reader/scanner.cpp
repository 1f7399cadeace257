#include "reader/scanner.h"

#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "reader/charclass.h"
#include "reader/keywords.h"
#include "reader/number.h"
#include "values/value.h"

namespace varimesh {

int lex_line = 1;
int lex_idline = 0;
int unknowncount = 0;
TokenValue yylval;
std::string_view yytext;

namespace {

// Conditions that outlast a token.
enum class Condition {
  Initial,
  AfterDef,     // a DEF name comes next
  AfterFields,  // "[" opens a field list
  Mask,         // between the parentheses of a bit mask, where words are enumeration words
  UnknownBody,  // the body of an unknown node comes next
};

// Returned where text was skipped without finding a token.
constexpr int noToken = -1;

constexpr char emptyText[] = "";

std::unique_ptr<char[]> input;        // the text, and one NUL behind it that ends every run
const char* inputEnd = emptyText;     // that NUL
const char* lastNewline = emptyText;  // the last newline in the text; its start when there is none
const char* cursor = emptyText;       // the first character not yet scanned
Condition condition = Condition::Initial;

void startScanning(std::unique_ptr<char[]> text, std::size_t size) {
  input = std::move(text);
  cursor = input.get();
  inputEnd = cursor + size;
  const std::size_t newline = std::string_view(cursor, size).rfind('\n');
  lastNewline = newline == std::string_view::npos ? cursor : cursor + newline;
  condition = Condition::Initial;
  lex_line = 1;
  lex_idline = 0;
  unknowncount = 0;
  yylval = {};
  yytext = {};
}

// A guess at the size of the file, at least 1.
std::size_t sizeHint(std::FILE* file) {
  struct stat status {};
  if (fstat(fileno(file), &status) != 0 || status.st_size <= 0) return std::size_t{1} << 16;
  return static_cast<std::size_t>(status.st_size) + 1;
}

int token(int code, const char* begin, const char* end) {
  yytext = {begin, static_cast<std::size_t>(end - begin)};
  cursor = end;
  return code;
}

int textToken(int code, const char* begin, const char* end) {
  token(code, begin, end);
  yylval.text = yytext;
  return code;
}

int endOfInput() { return token(TOKEN_END, inputEnd, inputEnd); }

int illegalCharacter() {
  std::fprintf(stderr, "warning: %d: skipping illegal input >%.1s<\n", lex_line, cursor);
  ++cursor;
  return noToken;
}

const char* runEnd(const char* p, CharClass wanted) {
  while (hasClass(*p, wanted)) ++p;
  return p;
}

// Skips a comment and its newline. Without a newline behind it, "#" begins no comment.
bool skipComment() {
  if (cursor >= lastNewline) return false;
  const auto rest = static_cast<std::size_t>(inputEnd - cursor);
  cursor = static_cast<const char*>(std::memchr(cursor, '\n', rest)) + 1;
  ++lex_line;
  return true;
}

int numberToken(const Number& number) {
  if (number.isInteger) {
    yylval.integer = number.integer;
    yylval.real = number.real;
    return token(TOKEN_INTEGER, cursor, number.end);
  }
  yylval.real = number.real;
  token(TOKEN_FLOAT, cursor, number.end);
  if (number.saturated) {
    const int length = static_cast<int>(std::min<std::size_t>(yytext.size(), INT_MAX));
    std::fprintf(stderr, "warning: %d: number >%.*s< out of range\n", lex_line, length,
                 yytext.data());
  }
  return TOKEN_FLOAT;
}

int keywordToken(const Keyword& keyword) {
  token(keyword.token, cursor, cursor + keyword.word.size());
  yylval.integer = keyword.token == TOKEN_INTEGER ? keyword.value : lex_line;
  yylval.real = static_cast<float>(keyword.value);
  if (keyword.token == TOKEN_DEF || keyword.token == TOKEN_USE) condition = Condition::AfterDef;
  if (keyword.token == TOKEN_FIELDS) condition = Condition::AfterFields;
  return keyword.token;
}

int unknownType(const char* end) {
  lex_idline = lex_line;
  condition = Condition::UnknownBody;
  return textToken(TOKEN_UNKNOWNTYPE, cursor, end);
}

// At a letter. The longest match wins, and among equals a keyword, then a number (an exponent
// without digits before it), then an unknown type.
int word() {
  const Keyword* keyword = findKeyword({cursor, static_cast<std::size_t>(inputEnd - cursor)});
  const char* const keywordEnd = keyword != nullptr ? cursor + keyword->word.size() : cursor;
  const bool mayBeNumber = *cursor == 'e' || *cursor == 'E';
  const Number number = mayBeNumber ? scanNumber(cursor) : Number{cursor};
  const bool mayBeType = hasClass(*cursor, CHAR_UPPER) && condition != Condition::Mask;
  const char* const typeEnd = mayBeType ? runEnd(keywordEnd, CHAR_TYPE) : cursor;

  const char* const end = std::max({keywordEnd, number.end, typeEnd});
  if (end == cursor) return illegalCharacter();
  if (end == keywordEnd) return keywordToken(*keyword);
  if (end == number.end) return numberToken(number);
  return unknownType(end);
}

// At a character that may begin a DEF name. A number goes before the name only if it is longer, as
// in "-.5", where the name would end before the point.
int nameAfterDef() {
  const char* const end = runEnd(cursor, CHAR_NAME);
  const Number number = scanNumber(cursor);
  if (number.end > end) return numberToken(number);
  condition = Condition::Initial;
  return textToken(TOKEN_NAME, cursor, end);
}

// At the opening quote. Escapes are kept as written; "#" is an ordinary character.
int quotedString() {
  const char* const begin = ++cursor;
  while (cursor != inputEnd) {
    switch (*cursor) {
      case '"':
        yylval.text = {begin, static_cast<std::size_t>(cursor - begin)};
        return token(TOKEN_STRING, begin, cursor + 1);
      case '\\':
        if (cursor + 1 == inputEnd) {
          illegalCharacter();
          break;
        }
        if (cursor[1] == '\n') ++lex_line;
        cursor += 2;
        break;
      case '\n':
        ++lex_line;
        ++cursor;
        break;
      default: ++cursor;
    }
  }
  return token(TOKEN_UNTERMINATED, inputEnd, inputEnd);
}

// The raw texts of field lists and unknown bodies are matched piece by piece: single delimiters and
// newlines, and runs of anything else. A "#" that begins a piece begins a comment, which is kept.
// Calls `delimiter` at each delimiter until that answers with a token.
template <class Delimiter>
int rawText(std::string_view delimiters, Delimiter delimiter) {
  while (cursor != inputEnd) {
    if (*cursor == '\n') {
      ++lex_line;
      ++cursor;
    } else if (delimiters.find(*cursor) != std::string_view::npos) {
      const int code = delimiter();
      if (code != noToken) return code;
    } else if (*cursor != '#' || !skipComment()) {
      while (cursor != inputEnd && *cursor != '\n' &&
             delimiters.find(*cursor) == std::string_view::npos) {
        ++cursor;
      }
    }
  }
  return endOfInput();
}

// At the opening bracket behind "fields".
int fieldList() {
  const char* const begin = cursor++;
  return rawText("]", [begin] {
    condition = Condition::Initial;
    return textToken(TOKEN_FIELDLIST, begin, cursor + 1);
  });
}

// Behind an unknown type: everything up to the brace that closes its body. A closing brace without
// an opening one is no body but the token that it is elsewhere.
int unknownBody() {
  const char* const begin = cursor;
  // A "#" right behind the type's name begins no comment. It could not be written back as one,
  // since a blank comes between them.
  while (cursor != inputEnd && *cursor != '\n' && *cursor != '{' && *cursor != '}') ++cursor;
  return rawText("{}", [begin]() -> int {
    if (*cursor == '{') {
      ++unknowncount;
    } else if (unknowncount == 0) {
      condition = Condition::Initial;
      return token('}', cursor, cursor + 1);
    } else if (--unknowncount == 0) {
      condition = Condition::Initial;
      return textToken(TOKEN_UNKNOWNBODY, begin, cursor + 1);
    }
    ++cursor;
    return noToken;
  });
}

int characterToken() {
  if (*cursor == '[' && condition == Condition::AfterFields) return fieldList();
  if (*cursor == '(') condition = Condition::Mask;
  if (*cursor == ')' && condition == Condition::Mask) condition = Condition::Initial;
  return token(static_cast<unsigned char>(*cursor), cursor, cursor + 1);
}

// Reads one token, or skips one piece of text that is none.
int scan() {
  if (condition == Condition::AfterDef && hasClass(*cursor, CHAR_BEGIN)) return nameAfterDef();
  switch (beginOf(*cursor)) {
    case Begin::Number: return numberToken(scanNumber(cursor));
    case Begin::Word: return word();
    case Begin::Character: return characterToken();
    case Begin::Quote: return quotedString();
    case Begin::Blank:
      do ++cursor;
      while (beginOf(*cursor) == Begin::Blank);
      return noToken;
    case Begin::Newline:
      ++lex_line;
      ++cursor;
      return noToken;
    case Begin::Comment: return skipComment() ? noToken : illegalCharacter();
    case Begin::Illegal: break;
  }
  return cursor == inputEnd ? endOfInput() : illegalCharacter();
}

// A place in the text, with its line.
struct Place {
  const char* p;
  int line;

  void skipBlanks() {
    for (;; ++p) {
      if (*p == '\n') {
        ++line;
      } else if (*p != ' ' && *p != '\t') {
        return;
      }
    }
  }
};

// Reads a number that calls for no warning, with the blanks around it. Inlined, it makes the
// reading of long lists a third faster.
[[gnu::always_inline]] inline bool readNumber(Place& place, Number& number) {
  place.skipBlanks();
  if (beginOf(*place.p) != Begin::Number) return false;
  number = scanNumber(place.p);
  if (number.saturated) return false;
  place.p = number.end;
  place.skipBlanks();
  return true;
}

// Whether a number surely ends in front of a character.
constexpr bool isEnd(char c) { return c == ',' || c == ' ' || c == '\n' || c == ']'; }

// Nearly all integers are -1 or have few digits and no sign. To read these here takes little more
// than half of the instructions of the general road.
[[gnu::always_inline]] inline bool readShortInteger(Place& place, int& element) {
  constexpr std::ptrdiff_t mostDigits = 9;
  const char* const begin = place.p;
  const char* p = begin;
  unsigned value = 0;  // wraps around beyond mostDigits; not used then
  for (; isDigit(*p); ++p) value = 10 * value + static_cast<unsigned>(*p - '0');
  if (p == begin && p[0] == '-' && p[1] == '1') {
    p += 2;
    element = -1;
  } else if (p != begin && *begin != '0' && p - begin <= mostDigits) {
    element = static_cast<int>(value);
  } else {
    return false;
  }
  if (!isEnd(*p)) return false;
  place.p = p;
  return true;
}

// Nearly all floats have few digits on both sides of a point, and no exponent. To read these here
// takes three quarters of the instructions of the general road, which computes the same.
[[gnu::always_inline]] inline bool readShortDecimal(Place& place, float& element) {
  constexpr std::ptrdiff_t mostDigits = 15;  // exact in double precision
  const char* p = place.p;
  const bool isNegative = *p == '-';
  if (isNegative) ++p;
  std::uint64_t digits = 0;  // wraps around beyond mostDigits; not used then
  const auto readDigits = [&p, &digits] {
    const char* const first = p;
    for (; isDigit(*p); ++p) digits = 10 * digits + static_cast<unsigned char>(*p - '0');
    return p - first;
  };
  const std::ptrdiff_t whole = readDigits();
  if (*p != '.') return false;
  ++p;
  const std::ptrdiff_t decimals = readDigits();
  const std::ptrdiff_t count = whole + decimals;
  if (count == 0 || count > mostDigits || !isEnd(*p)) return false;
  const double size =
      static_cast<double>(digits) / exactPowersOfTen[static_cast<std::size_t>(decimals)];
  element = static_cast<float>(isNegative ? -size : size);
  place.p = p;
  return true;
}

bool readElement(Place& place, int& element) {
  place.skipBlanks();
  if (readShortInteger(place, element)) {
    place.skipBlanks();
    return true;
  }
  Number number;
  if (!readNumber(place, number) || !number.isInteger) return false;
  element = number.integer;
  return true;
}

bool readElement(Place& place, float& element) {
  place.skipBlanks();
  if (readShortDecimal(place, element)) {
    place.skipBlanks();
    return true;
  }
  Number number;
  if (!readNumber(place, number)) return false;
  element = number.real;
  return true;
}

bool readElement(Place& place, Vec2& element) {
  return readElement(place, element.x) && readElement(place, element.y);
}

bool readElement(Place& place, Vec& element) {
  return readElement(place, element.x) && readElement(place, element.y) &&
         readElement(place, element.z);
}

// Counts in bytes, so that many are counted at a time: a quarter of the instructions of std::count.
std::size_t countCommas(const char* begin, const char* end) {
  std::size_t count = 0;
  while (begin != end) {
    const char* const blockEnd = begin + std::min<std::ptrdiff_t>(end - begin, UCHAR_MAX);
    unsigned char inBlock = 0;
    for (; begin != blockEnd; ++begin)
      inBlock = static_cast<unsigned char>(inBlock + (*begin == ','));
    count += inBlock;
  }
  return count;
}

// How many elements there seem to be up to the next closing bracket: one more than there are
// commas, but no more than find room with a blank or comma behind every number.
std::size_t countElements(std::size_t elementSize) {
  const void* const bracket = std::memchr(cursor, ']', static_cast<std::size_t>(inputEnd - cursor));
  const char* const end = bracket != nullptr ? static_cast<const char*>(bracket) : inputEnd;
  const std::size_t commas = countCommas(cursor, end);
  const std::size_t numbersEach = elementSize / sizeof(float);
  return std::min(commas, static_cast<std::size_t>(end - cursor) / (2 * numbersEach)) + 1;
}

}  // namespace

bool lex_setInput(std::FILE* file) {
  std::size_t capacity = sizeHint(file);
  std::size_t size = 0;
  // One byte more, for the NUL behind the text.
  auto text = std::make_unique_for_overwrite<char[]>(capacity + 1);
  while (const std::size_t got = std::fread(text.get() + size, 1, capacity - size, file)) {
    size += got;
    if (size < capacity) continue;
    auto larger = std::make_unique_for_overwrite<char[]>(2 * capacity + 1);
    std::memcpy(larger.get(), text.get(), size);
    text = std::move(larger);
    capacity *= 2;
  }
  if (std::ferror(file) != 0) {
    std::fprintf(stderr, "input in flex scanner failed\n");
    return false;
  }
  text[size] = '\0';
  startScanning(std::move(text), size);
  return true;
}

void lex_setText(std::string_view text) {
  auto copy = std::make_unique_for_overwrite<char[]>(text.size() + 1);
  text.copy(copy.get(), text.size());
  copy[text.size()] = '\0';
  startScanning(std::move(copy), text.size());
}

void lex_release() {
  input.reset();
  cursor = inputEnd = lastNewline = emptyText;
  yylval.text = yytext = {};
}

int yylex() {
  if (condition == Condition::UnknownBody) return unknownBody();
  int code;
  do {
    code = scan();
  } while (code == noToken);
  return code;
}

template <class Element>
bool lex_readElements(std::vector<Element>& list) {
  if (list.capacity() == 0) list.reserve(countElements(sizeof(Element)));
  Place place{cursor, lex_line};
  Element element{};
  while (readElement(place, element)) {
    const bool last = *place.p == ']';
    if (!last && *place.p != ',') break;
    if (!last) ++place.p;
    list.push_back(element);
    cursor = place.p;
    lex_line = place.line;
    if (last) return true;
  }
  return false;
}

template bool lex_readElements(std::vector<int>&);
template bool lex_readElements(std::vector<float>&);
template bool lex_readElements(std::vector<Vec2>&);
template bool lex_readElements(std::vector<Vec>&);

}  // namespace varimesh
