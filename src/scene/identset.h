// The table of DEF names through which USE references are resolved.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace varimesh {

class Node;

// An ordered map from name to node. A name defined more than once usually means the node defined
// last, but not always: the table answers as an unbalanced search tree does in which equal names go
// to the right and a search stops at the first equal name followed by no other. Such a run of equal
// names ends for good when a name that sorts behind it is hung in between; `closed` records that.
class IdentSet {
 public:
  // Enters a node, which must outlive the use of the set, under its name.
  void insert(Node* node);
  // The node that the name stands for, or null.
  [[nodiscard]] Node* search(std::string_view name) const;
  void clear() { idents_.clear(); }

 private:
  struct Ident {
    Node* node;
    bool closed = false;
  };
  std::map<std::string, Ident, std::less<>> idents_;
};

}  // namespace varimesh
