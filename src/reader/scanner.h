// The scanner: turns VRML 1.0 text into the tokens of the grammar.
//
// The whole text is held in memory; tokens are views into it, valid until the next text is set or
// this one released.
#pragma once

#include <cstdio>
#include <string_view>
#include <vector>

#include "reader/names.h"

namespace varimesh {

// What comes with a token; which member counts depends on the token.
struct TokenValue {
  int integer = 0;        // an integer; of node keywords and USE: their line
  float real = 0;         // a float, or an integer as one: not bound to 32 bits
  std::string_view text;  // a name, an unknown type, its body; a field list with its brackets;
                          //   a string without its quotes, otherwise as written
};

extern int lex_line;             // the current line, counted from 1
extern int lex_idline;           // the line of the last unknown type name
extern int unknowncount;         // depth of braces in the body of an unknown node
extern TokenValue yylval;        // of the last token
extern std::string_view yytext;  // the text of the last token; empty at the end of the input

// Reads the whole file, which then is what yylex scans. False, with a message, after a read error.
bool lex_setInput(std::FILE* file);
// The same for a text; it is copied.
void lex_setText(std::string_view text);
// Frees the text. There is nothing left to scan then.
void lex_release();

// Reads the next token and returns its code, TOKEN_END at the end of the text. Illegal characters
// are skipped with a warning.
int yylex();

// The fast lane for bracketed lists of numbers (element types int, float, Vec2 and Vec), to be
// called where an element or the closing bracket may come next. Appends elements to the list as
// long as each consists of nothing but numbers, blanks and newlines and is followed by a comma or
// the closing bracket. The comma is consumed, the bracket is not; true when an element was read and
// the bracket follows. Whatever else there is waits for yylex, with nothing of its element
// consumed, so that values, messages and lines are those of a scan token by token. Reserves memory
// for the list first.
template <class Element>
bool lex_readElements(std::vector<Element>& list);

}  // namespace varimesh
