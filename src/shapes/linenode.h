// The IndexedLineSet node.
#pragma once

#include "shapes/shapenode.h"

namespace varimesh {

class LineNode : public ShapeNode {
 public:
  static int verbose;
  using ShapeNode::ShapeNode;

 protected:
  [[nodiscard]] Kind getKind() const override;
  [[nodiscard]] std::unique_ptr<ShapeSet> generateShapeSet() override { return generateLineSet(); }
  void printLevelStatistics(const ShapeSet& set) const override;
  void printLevel(Output& out, int indent, const ShapeSet& set) override;

 private:
  [[nodiscard]] std::unique_ptr<ShapeSet> generateLineSet();
};

}  // namespace varimesh
