// Attribute nodes that carry lists of data: coordinates, materials, normals and texture
// coordinates. Written, such a node moves its values into a deduplicating set, numbers and writes
// them; the shapes behind it look up their new index numbers there.
#pragma once

#include <memory>
#include <utility>

#include "data/material.h"
#include "data/normal.h"
#include "lod/octreecoordset.h"
#include "scene/joinmode.h"
#include "scene/node.h"
#include "scene/state.h"
#include "values/lazy.h"

namespace varimesh {

class AttributeNode : public Node {
 public:
  Node* lastUser = nullptr;   // the shape that captured this node last
  Node* fixedUser = nullptr;  // a node that addresses the entries by their input position
  int count = 0;              // values of the node, noted and added up by joining

  using Node::Node;
  void print(Output& out, int indent) final;

  // Whether the program made the node, for shapes without any of its kind before them.
  [[nodiscard]] bool isDefault() const { return firstLine < 0; }

  // Each shape that captures the node announces itself, and says when it has been written. The set
  // lives until the last of them has been, in whatever order they are written.
  void addUser(Node* shape);
  void removeUser();
  [[nodiscard]] int getUsers() const { return users_; }

  std::uint64_t getJoinSignature() override;
  // Equal for nodes that joining finds equal; not kept up when the node takes in another.
  std::uint64_t getContentHash();
  // The number of entries, for joining.
  [[nodiscard]] virtual int countValues() = 0;
  // Bit of joinmode that says that two nodes of this kind differ.
  [[nodiscard]] virtual int getJoinBit() const = 0;

 protected:
  // Fills the set and writes what is in it.
  virtual void printData(Output& out, int indent) = 0;
  virtual void deleteSet() = 0;
  // Reports how many values were read and what became of them.
  void printStatistics(const char* prefix, std::size_t values, const DataSet& set) const;

 private:
  [[nodiscard]] virtual std::uint64_t hashContent() { return 0; }

  std::uint64_t contentHash_ = 0;  // 0: not known yet
  int users_ = 0;
  bool isWritten_ = false;
};

class CoordNode : public AttributeNode {
 public:
  static int verbose;
  Lazy<OctreeCoordSet> coordSet;

  using AttributeNode::AttributeNode;
  void setupDepends(State& state) override { state.coordNode = this; }
  int joinable(Node& other) override;
  void makeJoin(Node& other) override;

 protected:
  void printData(Output& out, int indent) override;
  void deleteSet() override { coordSet.reset(); }
  [[nodiscard]] int countValues() override;
  [[nodiscard]] int getJoinBit() const override { return JOIN_COORDS; }
};

class MaterialNode : public AttributeNode {
 public:
  static int verbose;
  Lazy<MaterialSet> materialSet;

  using AttributeNode::AttributeNode;
  void setupDepends(State& state) override { state.materialNode = this; }
  int joinable(Node& other) override;
  void makeJoin(Node& other) override;
  void printTree(Output& out, int indent) override;
  // Gives a face set material indices, one for each face, and the binding that goes with them.
  static void createMaterialIndex(Node& shape, int materialNumber);

 protected:
  void printData(Output& out, int indent) override;
  void deleteSet() override { materialSet.reset(); }
  [[nodiscard]] std::uint64_t hashContent() override;
  [[nodiscard]] int countValues() override;
  [[nodiscard]] int getJoinBit() const override { return JOIN_MATERIALS; }
};

class NormalNode : public AttributeNode {
 public:
  static int verbose;
  Lazy<NormalSet> normalSet;

  using AttributeNode::AttributeNode;
  void setupDepends(State& state) override { state.normalNode = this; }
  int joinable(Node& other) override;
  void makeJoin(Node& other) override;

 protected:
  void printData(Output& out, int indent) override;
  void deleteSet() override { normalSet.reset(); }
  [[nodiscard]] std::uint64_t hashContent() override;
  [[nodiscard]] int countValues() override;
  [[nodiscard]] int getJoinBit() const override { return JOIN_NORMALS; }
};

class TextureCoordNode : public AttributeNode {
 public:
  static int verbose;
  Lazy<TextureCoordSet> textureCoordSet;
  State savedState;  // as it was behind this node when it was passed last

  using AttributeNode::AttributeNode;
  // A node that is passed more than once must find the same texture each time.
  void setupDepends(State& state) override;
  int joinable(Node& other) override;
  void makeJoin(Node& other) override;
  std::uint64_t getJoinSignature() override;

 protected:
  void printData(Output& out, int indent) override;
  void deleteSet() override { textureCoordSet.reset(); }
  [[nodiscard]] int countValues() override;
  [[nodiscard]] int getJoinBit() const override { return JOIN_TEXTURECOORDS; }
};

}  // namespace varimesh
