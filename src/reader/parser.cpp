#include "reader/parser.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <iterator>
#include <string>
#include <type_traits>
#include <utility>

#include "reader/grammar.h"
#include "reader/nodefactory.h"
#include "reader/scanner.h"
#include "scene/groupnodes.h"
#include "scene/leafnodes.h"
#include "values/value.h"

namespace varimesh {

std::vector<std::unique_ptr<Node>> yacc_tree;
int yacc_nolods = 0;

void yyerror(const char* message) {
  const int length = static_cast<int>(std::min<std::size_t>(yytext.size(), INT_MAX));
  std::fprintf(stderr, "error: %d: %s at or before '%.*s'\n", lex_line, message, length,
               yytext.data());
}

namespace {

// How deep groups may be nested is measured in entries of a stack that holds, for every open group,
// its place in the list of items, a DEF prefix, the type and the brace, and then a declaration and
// a list of fields where the type admits them.
constexpr std::size_t stackLimit = 100000;

constexpr std::size_t stackEntries(const NodeRule& rule) {
  const bool fields = rule.fields[0].field != FIELD_NONE;
  return 4u + (rule.declaration ? 1u : 0u) + (fields ? 1u : 0u);
}

// Reads by looking at one token at a time. A token is read only when a decision needs it, so that
// the scanner's messages and lines never run ahead. Open groups are kept on a stack, not in
// recursion.
//
// Functions that read something answer false once the parse has failed; status_ is then set.
class Parser {
 public:
  int parse();

 private:
  struct OpenNode {
    const NodeRule* rule;
    NodeInit init;
    RareText name;
    std::size_t firstItem;  // of its children in items_
  };
  using ValuePointer = std::unique_ptr<Value>;
  using ReadValue = bool (Parser::*)(const FieldRule&, ValuePointer&);

  int peek();
  bool is(int token) { return peek() == token; }
  void consume() { hasToken_ = false; }
  bool accept(int token);
  bool expect(int token);
  bool fail(const char* message, int status);
  bool parseError() { return fail("parse error", 1); }

  bool item();
  bool use();
  bool unknownNode(RareText&& name);
  bool openNode(const NodeRule& rule, RareText&& name);
  bool closeNode(OpenNode& node);
  bool fields(const NodeRule& rule, std::vector<Field>& list);
  void addItem(std::unique_ptr<Node> node, RareText&& name);

  bool element(int& value);
  bool element(float& value);
  bool element(Vec2& value);
  bool element(Vec& value);
  bool element(std::string& value);

  template <class List>
  bool one(const FieldRule& rule, ValuePointer& value);
  template <class List>
  bool many(const FieldRule& rule, ValuePointer& value);
  bool boolean(const FieldRule& rule, ValuePointer& value);
  bool enumeration(const FieldRule& rule, ValuePointer& value);
  bool bitMask(const FieldRule& rule, ValuePointer& value);
  bool rotation(const FieldRule& rule, ValuePointer& value);
  bool matrix(const FieldRule& rule, ValuePointer& value);
  bool image(const FieldRule& rule, ValuePointer& value);
  static constexpr std::array<ReadValue, formCount> makeReaders();

  int token_ = TOKEN_END;
  bool hasToken_ = false;  // whether token_ has been read and not yet been consumed
  int status_ = 0;         // of the failed parse
  std::size_t stackUsed_ = 0;
  std::vector<OpenNode> open_;
  NodeList items_;  // those of the file, then those of each open group
};

// Tokens

int Parser::peek() {
  if (!hasToken_) {
    token_ = yylex();
    hasToken_ = true;
  }
  return token_;
}

bool Parser::accept(int token) {
  if (!is(token)) return false;
  consume();
  return true;
}

bool Parser::expect(int token) { return accept(token) || parseError(); }

bool Parser::fail(const char* message, int status) {
  yyerror(message);
  status_ = status;
  return false;
}

// Items

int Parser::parse() {
  for (;;) {
    if (open_.empty()) {
      if (is(TOKEN_END)) break;
    } else if (accept('}')) {
      OpenNode& node = open_.back();
      stackUsed_ -= stackEntries(*node.rule);
      if (!closeNode(node)) return status_;
      open_.pop_back();
      continue;
    }
    if (!item()) return status_;
  }
  yacc_tree = std::move(items_);
  return 0;
}

bool Parser::item() {
  if (is(TOKEN_USE)) return use();
  RareText name;
  if (accept(TOKEN_DEF)) {
    if (!is(TOKEN_NAME)) return parseError();
    name = RareText(yylval.text);
    consume();
  }
  if (is(TOKEN_UNKNOWNTYPE)) return unknownNode(std::move(name));
  const int type = peek() - TOKEN_NODE;
  if (type < 0 || type >= NODE_NONE) return parseError();
  return openNode(nodeRules[static_cast<std::size_t>(type)], std::move(name));
}

bool Parser::use() {
  const int line = yylval.integer;
  consume();
  if (!is(TOKEN_NAME)) return parseError();
  items_.push_back(std::make_unique<UseNode>(std::string(yylval.text), line, line));
  consume();
  return true;
}

bool Parser::unknownNode(RareText&& name) {
  std::string type(yylval.text);
  consume();
  if (!is(TOKEN_UNKNOWNBODY)) return parseError();
  addItem(std::make_unique<UnknownNode>(std::move(type), std::string(yylval.text), lex_idline,
                                        lex_line),
          std::move(name));
  consume();
  return true;
}

// Reads a node up to its children; to its end, if its type has none.
bool Parser::openNode(const NodeRule& rule, RareText&& name) {
  OpenNode node{&rule, {}, std::move(name), items_.size()};
  node.init.type = rule.type;
  node.init.firstLine = yylval.integer;
  if (stackUsed_ + stackEntries(rule) > stackLimit) return fail("parser stack overflow", 2);
  consume();
  if (!expect('{')) return false;
  if (rule.declaration && accept(TOKEN_FIELDS)) {
    if (!is(TOKEN_FIELDLIST)) return parseError();
    node.init.fieldsText = RareText(yylval.text);
    consume();
  }
  if (!fields(rule, node.init.fields)) return false;
  if (!rule.children) return expect('}') && closeNode(node);
  stackUsed_ += stackEntries(rule);
  open_.push_back(std::move(node));
  return true;
}

// Builds the node whose closing brace has just been consumed, from what `node` holds.
bool Parser::closeNode(OpenNode& node) {
  const bool isLevels = node.init.type == NODE_LOD || node.init.type == NODE_LevelOfDetail;
  if (isLevels && yacc_nolods == 0) {
    std::fprintf(stderr, "error: this file already contains Levels of Detail\n");
    status_ = 1;
    return false;
  }
  node.init.lastLine = lex_line;
  const auto first = items_.begin() + static_cast<std::ptrdiff_t>(node.firstItem);
  NodeList children(std::make_move_iterator(first), std::make_move_iterator(items_.end()));
  items_.erase(first, items_.end());
  addItem(makeNode(std::move(node.init), std::move(children)), std::move(node.name));
  return true;
}

void Parser::addItem(std::unique_ptr<Node> node, RareText&& name) {
  node->name = std::move(name);
  node->registerName();
  items_.push_back(std::move(node));
}

// Fields and their values

constexpr std::array<Parser::ReadValue, formCount> Parser::makeReaders() {
  std::array<ReadValue, formCount> readers{};
  const auto set = [&readers](Form form, ReadValue reader) {
    readers[static_cast<std::size_t>(form)] = reader;
  };
  set(Form::Float, &Parser::one<FFloat>);
  set(Form::Floats, &Parser::many<FFloat>);
  set(Form::Integer, &Parser::one<FLong>);
  set(Form::Integers, &Parser::many<FLong>);
  set(Form::Boolean, &Parser::boolean);
  set(Form::Enumeration, &Parser::enumeration);
  set(Form::BitMask, &Parser::bitMask);
  set(Form::String, &Parser::one<FString>);
  set(Form::Strings, &Parser::many<FString>);
  set(Form::Vector2, &Parser::one<FVec2f>);
  set(Form::Vectors2, &Parser::many<FVec2f>);
  set(Form::Vector3, &Parser::one<FVec3f>);
  set(Form::Vectors3, &Parser::many<FVec3f>);
  set(Form::Rotation, &Parser::rotation);
  set(Form::Matrix, &Parser::matrix);
  set(Form::Image, &Parser::image);
  return readers;
}

bool Parser::fields(const NodeRule& rule, std::vector<Field>& list) {
  static constexpr std::array<ReadValue, formCount> readers = makeReaders();
  for (;;) {
    const int number = peek() - TOKEN_FIELD;
    if (number < 0 || number >= FIELD_NONE) return true;
    const FieldRule* fieldRule = rule.find(number);
    if (fieldRule == nullptr) return parseError();
    consume();
    ValuePointer value;
    const ReadValue read = readers[static_cast<std::size_t>(fieldRule->form)];
    if (!(this->*read)(*fieldRule, value)) return false;
    list.emplace_back(number, std::move(value));
  }
}

bool Parser::element(int& value) {
  if (!is(TOKEN_INTEGER)) return parseError();
  value = yylval.integer;
  consume();
  return true;
}

bool Parser::element(float& value) {
  if (!is(TOKEN_INTEGER) && !is(TOKEN_FLOAT)) return parseError();
  value = yylval.real;
  consume();
  return true;
}

bool Parser::element(Vec2& value) { return element(value.x) && element(value.y); }

bool Parser::element(Vec& value) {
  return element(value.x) && element(value.y) && element(value.z);
}

bool Parser::element(std::string& value) {
  if (!is(TOKEN_STRING)) return parseError();
  value = yylval.text;
  consume();
  return true;
}

template <class List>
bool Parser::one(const FieldRule&, ValuePointer& value) {
  auto list = std::make_unique<List>();
  if (!element(list->values.emplace_back())) return false;
  value = std::move(list);
  return true;
}

template <class List>
bool Parser::many(const FieldRule& rule, ValuePointer& value) {
  if (!accept('[')) return one<List>(rule, value);
  auto list = std::make_unique<List>();
  auto& values = list->values;
  constexpr bool isText = std::is_same_v<decltype(values.back()), std::string&>;
  do {
    if constexpr (!isText) {
      if (lex_readElements(values)) break;
    }
    if (is(']')) break;
    if (!element(values.emplace_back())) return false;
  } while (accept(','));
  if (!expect(']')) return false;
  if (!values.empty()) value = std::move(list);
  return true;
}

bool Parser::boolean(const FieldRule&, ValuePointer& value) {
  int number = 0;
  if (!element(number)) return false;
  value = std::make_unique<FBool>(number);
  return true;
}

bool Parser::enumeration(const FieldRule& rule, ValuePointer& value) {
  int number = 0;
  if (!element(number)) return false;
  value = std::make_unique<FEnum>(number, rule.kind);
  return true;
}

bool Parser::bitMask(const FieldRule& rule, ValuePointer& value) {
  int mask = 0;
  if (accept('(')) {
    do {
      int bits = 0;
      if (!element(bits)) return false;
      mask |= bits;
    } while (accept('|'));
    if (!expect(')')) return false;
  } else if (!element(mask)) {
    return false;
  }
  value = std::make_unique<FBitMask>(mask, rule.kind);
  return true;
}

bool Parser::rotation(const FieldRule&, ValuePointer& value) {
  Rotation rotation;
  if (!element(rotation.axis) || !element(rotation.angle)) return false;
  value = std::make_unique<FRotation>(rotation);
  return true;
}

bool Parser::matrix(const FieldRule&, ValuePointer& value) {
  Matrix matrix;
  for (float& entry : matrix.entries) {
    if (!element(entry)) return false;
  }
  value = std::make_unique<FMatrix>(matrix);
  return true;
}

// Width, height and number of components, then any number of pixels; nothing checks how many.
bool Parser::image(const FieldRule&, ValuePointer& value) {
  std::vector<int> numbers(3);
  for (int& number : numbers) {
    if (!element(number)) return false;
  }
  while (is(TOKEN_INTEGER)) {
    numbers.push_back(yylval.integer);
    consume();
  }
  value = std::make_unique<FImage>(std::move(numbers));
  return true;
}

}  // namespace

int yyparse() {
  const int status = Parser().parse();
  if (status != 0) Node::identifiers.clear();  // the nodes are gone
  return status;
}

}  // namespace varimesh
