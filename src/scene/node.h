// The base of all scene-graph nodes: what they share, how they are written and how they complain.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <vector>

#include "reader/names.h"
#include "scene/identset.h"
#include "values/field.h"
#include "values/output.h"
#include "values/raretext.h"

namespace varimesh {

class GroupNode;
class JoinShape;
class State;
class UseNode;

// What the reader knows of a node when its closing brace has been read.
struct NodeInit {
  int type = NODE_NONE;
  RareText fieldsText{};  // of a "fields" declaration, brackets included
  std::vector<Field> fields{};
  int firstLine = 0;
  int lastLine = 0;
};

class Node {
 public:
  int type;                   // a NodeType
  int firstLine;              // input lines; 0 for nodes made by the program,
  int lastLine;               //   -1 for the default attribute nodes
  int used = 0;               // 1 once a USE refers to the node or to a group around it
  int joinState = 0;          // bits of the joining phase
  RareText name;              // of DEF
  RareText fieldsText;        // see NodeInit
  std::vector<Field> fields;  // in input order; deleted once the node has been written

  // All names that DEF gave in the input.
  static IdentSet identifiers;
  static int nolods;        // non-zero: shapes are written without levels of detail
  static int extractlod;    // the one level to write, -1 for all
  static int removedcount;  // nodes destroyed so far
  static int joinmode;      // which attribute data differ in the present comparison
  static int verbosejoin;   // non-zero: joining and deletion report on standard output

  explicit Node(NodeInit&& init);
  // A node that the program makes.
  explicit Node(NodeType kind) : type(kind), firstLine(0), lastLine(0) {}
  virtual ~Node();
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;

  // Writes the node in VRML 1.0 syntax.
  virtual void print(Output& out, int indent);
  // Takes part in the traversal that resolves what depends on what.
  virtual void setupDepends(State& state);
  // Takes part in the search for the first perspective camera; `camera` is the one found so far.
  virtual void setupCamera(Node*& camera);
  // Notes that a USE refers to this node, and to all nodes below it.
  virtual void markAsUsed();
  // Writes the node's line of the tree listing, without a line end.
  virtual void printTree(Output& out, int indent);
  // Whether this node can be merged into `other`, a later node; notes in joinmode which attribute
  // data differ. Not for groups, which joining compares child by child.
  virtual int joinable(Node& other);
  // Moves this node's content into `other`.
  virtual void makeJoin(Node& other);
  // A number such that nodes with different numbers are certainly not joinable; 0: with no node.
  [[nodiscard]] virtual std::uint64_t getJoinSignature();
  // What joining needs of a shape, or null.
  virtual JoinShape* asJoinShape() { return nullptr; }
  // This node as a group, or null.
  virtual GroupNode* asGroup() { return nullptr; }
  // This node as a USE reference, or null.
  virtual UseNode* asUse() { return nullptr; }

  // The parts of the written form. printHead leaves `indent` one level deeper; printTail takes the
  // column that the head stands in.
  void printHead(Output& out, int& indent) const;
  void printFields(Output& out, int indent) const;
  void printTail(Output& out, int indent) const;

  // The field with that number, or null; the last one when it occurs more than once.
  [[nodiscard]] Field* getField(int number);
  // The values of the last field with that number when there is at least one, else null.
  template <class V>
  [[nodiscard]] V* getValue(int number) {
    Field* field = getField(number);
    return field != nullptr && field->size() > 0 ? static_cast<V*>(field->value.get()) : nullptr;
  }
  void deleteFields() { std::vector<Field>().swap(fields); }

  // Whether two fields hold equal numbers: both absent, or of the same length with equal values.
  static bool compareField(const Field* a, const Field* b);
  static bool compare3DField(const Field* a, const Field* b);
  // Puts values in front of others and leaves none behind. The storage of `from`, which has grown
  // by all that it absorbed before, is taken over, so that a long row of joins costs no more than
  // what each one adds.
  template <class T>
  static void prepend(std::vector<T>& from, std::vector<T>& to) {
    from.insert(from.end(), std::make_move_iterator(to.begin()), std::make_move_iterator(to.end()));
    to = std::move(from);
    from.clear();
  }
  // Puts the values of `from` in front of those of `to` and leaves `from` empty.
  static void joinFields(Field* from, Field* to);
  // The same for a list of floats or of 3-D vectors that both nodes are to have: one that lacks it
  // gets the default value first. A list of this node that holds fewer than `size` values goes on
  // with its last one, which must not become the other's first; so it is filled up before.
  void makeJoinField(Node& other, int fieldNumber, std::size_t size);
  void makeJoinField3D(Node& other, int fieldNumber, std::size_t size);

  // Enters the node's DEF name, if it has one, into the table of names.
  void registerName();

  // Diagnostics, each with the node's lines and type. The formats bring their own line ends.
  // message goes to standard output, warning and error to standard error; error ends the run.
  [[gnu::format(printf, 3, 4)]] void message(const char* prefix, const char* format, ...) const;
  [[gnu::format(printf, 2, 3)]] void warning(const char* format, ...) const;
  [[noreturn, gnu::format(printf, 2, 3)]] void error(const char* format, ...) const;

  [[nodiscard]] std::string_view typeName() const {
    return nodeIdString[static_cast<std::size_t>(type)];
  }

 protected:
  // What messages begin with.
  void printPlace(std::FILE* file) const;
};

}  // namespace varimesh
