// The base of the two shapes that are written with levels of detail.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "data/material.h"
#include "data/normal.h"
#include "scene/groupnodes.h"
#include "scene/joinshape.h"
#include "scene/node.h"
#include "scene/state.h"
#include "shapes/shapeset.h"

namespace varimesh {

class ShapeNode : public Node, public JoinShape {
 public:
  State state;              // as it was when the shape was passed first, bindings without DEFAULT
  int materialBinding = 0;  // as written: `state`'s raised to the indexed form
  int normalBinding = 0;

  using Node::Node;
  // Captures the state; a shape that is passed again must find the same attributes.
  void setupDepends(State& present) override;
  void printTree(Output& out, int indent) override;
  int joinable(Node& other) override;
  void makeJoin(Node& other) override;
  std::uint64_t getJoinSignature() override;
  JoinShape* asJoinShape() override { return this; }
  [[nodiscard]] const State& getCapturedState() const override { return state; }
  void setMaterialBinding(int binding) override;
  void wrapMaterialIndex() override;
  // Builds level 0 from the index fields, has the further levels made, and writes them all.
  void print(Output& out, int indent) override;

  [[nodiscard]] OctreeCoordSet& getCoordSet() const;
  [[nodiscard]] const MaterialSet& getMaterialSet() const;
  [[nodiscard]] const NormalSet& getNormalSet() const;
  [[nodiscard]] const TextureCoordSet& getTextureCoordSet() const;

  // Look up an index number of the input: the point, or the number under which the entry is
  // written. A number out of range is an error.
  [[nodiscard]] CoordId getCoordIndex(int index) const;
  [[nodiscard]] int getMaterialIndex(int index) const;
  [[nodiscard]] int getNormalIndex(int index) const;
  [[nodiscard]] int getTextureCoordIndex(int index) const;

 protected:
  // How the two kinds of shape differ while levels are made.
  struct Kind {
    const char* prefix;    // of verbose messages
    const char* progress;  // what the line of level numbers begins with
    int shapeType;         // for the coordinate set
    bool isVerbose;
  };
  [[nodiscard]] virtual Kind getKind() const = 0;
  // Builds level 0 and uses up the index fields.
  [[nodiscard]] virtual std::unique_ptr<ShapeSet> generateShapeSet() = 0;
  // Reports what a level holds, in the form "... set=%d ...".
  virtual void printLevelStatistics(const ShapeSet& set) const = 0;
  virtual void printLevel(Output& out, int indent, const ShapeSet& set) = 0;
  // The ShapeHints node that must stand in front of the levels, or null.
  [[nodiscard]] virtual std::unique_ptr<Node> makeHints() const { return nullptr; }

  // What both kinds do first: reports the attribute nodes used, warns of useless index lists,
  // settles the material binding, and starts the shape in its coordinate set. Answers the points of
  // its polygons, with -1 between them; the field keeps them.
  [[nodiscard]] std::span<const int> beginShapeSet();

 private:
  using Levels = std::vector<std::unique_ptr<ShapeSet>>;

  [[nodiscard]] static bool isWithLevels() { return nolods == 0 && extractlod != 0; }
  void checkSameState(const State& present) const;
  void generateLODs(Levels& levels) const;
  [[nodiscard]] NodeList makeAttributeNodes() const;
  void printEmpty(Output& out, int indent) const;
  void printLevels(Output& out, int indent, const Levels& levels);
  void printRanges(Output& out, int indent, const Levels& levels) const;
  void cleanUpLast() const;

  [[nodiscard]] bool isInJoinableBindings();
  [[nodiscard]] bool haveExactLists();
  [[nodiscard]] bool hasUselessIndex();

  // For joining: whether every index list ends where the last polygon does, and holds only numbers
  // of entries that are there; -1: not known yet.
  int exactLists_ = -1;
};

}  // namespace varimesh
