#include "scene/identset.h"

#include <iterator>

#include "scene/node.h"

namespace varimesh {

void IdentSet::insert(Node* node) {
  const auto [place, isNew] = idents_.try_emplace(std::string(node->name), Ident{node});
  if (!isNew) {
    if (!place->second.closed) place->second.node = node;
  } else if (place != idents_.begin()) {
    std::prev(place)->second.closed = true;
  }
}

Node* IdentSet::search(std::string_view name) const {
  const auto place = idents_.find(name);
  return place != idents_.end() ? place->second.node : nullptr;
}

}  // namespace varimesh
