// The IndexedFaceSet node.
#pragma once

#include "shapes/shapenode.h"

namespace varimesh {

class FaceNode : public ShapeNode {
 public:
  static int verbose;
  using ShapeNode::ShapeNode;

 protected:
  [[nodiscard]] Kind getKind() const override;
  [[nodiscard]] std::unique_ptr<ShapeSet> generateShapeSet() override { return generateFaceSet(); }
  void printLevelStatistics(const ShapeSet& set) const override;
  void printLevel(Output& out, int indent, const ShapeSet& set) override;
  [[nodiscard]] std::unique_ptr<Node> makeHints() const override;

 private:
  [[nodiscard]] std::unique_ptr<ShapeSet> generateFaceSet();
};

}  // namespace varimesh
