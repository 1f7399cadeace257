// Whether an outline crosses or touches itself.

#pragma once

#include <vector>

#include "triangulate/edgeorder.h"
#include "triangulate/outline.h"

namespace varimesh {

// Serves any number of outlines, one after the other; its tables are reused.
class EdgeSweep {
 public:
  // Whether no two corners are in one place, save the first and the last, and no two edges meet
  // that are not neighbours.
  bool isClear(const Outline& outline);

 private:
  bool cornersCoincide(const Outline& outline);
  bool edgesAreClear(const Outline& outline);
  void makeBoxes(const Outline& outline);
  int chooseAxis(const Outline& outline) const;

  std::vector<int> sorted_;  // corners
  std::vector<EdgeBox> boxes_;
  std::vector<EdgeBox> open_;
};

}  // namespace varimesh
