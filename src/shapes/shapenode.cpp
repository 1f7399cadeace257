#include "shapes/shapenode.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>
#include <utility>

#include "scene/attributenodes.h"
#include "scene/bindingnodes.h"

namespace varimesh {
namespace {

// Bindings other than OVERALL have an indexed form, the one that shapes are written with.
int raise(int binding) {
  return binding == PER_PART || binding == PER_FACE || binding == PER_VERTEX ? binding + 1
                                                                             : binding;
}

// Whether an index list has no use under the binding.
bool isUseless(int binding) {
  return binding == OVERALL || binding == PER_PART || binding == PER_FACE || binding == PER_VERTEX;
}

std::unique_ptr<Node> makeBindingNode(NodeType type, int binding) {
  auto node = std::make_unique<Node>(type);
  node->fields.emplace_back(FIELD_value, std::make_unique<FEnum>(binding, KIND_binding));
  return node;
}

}  // namespace

void ShapeNode::setupDepends(State& present) {
  State captured = present;
  if (captured.materialBinding == DEFAULT) captured.materialBinding = OVERALL;
  if (captured.normalBinding == DEFAULT) captured.normalBinding = PER_VERTEX_INDEXED;
  if (state.coordNode != nullptr) return checkSameState(captured);

  state = captured;
  materialBinding = raise(state.materialBinding);
  normalBinding = raise(state.normalBinding);
  state.coordNode->addUser(this);
  state.materialNode->addUser(this);
  state.normalNode->addUser(this);
  state.textureCoordNode->addUser(this);
}

// The shape is made and written once, so a USE in other surroundings would show it wrong.
void ShapeNode::checkSameState(const State& present) const {
  const auto fail = [&](const char* what) {
    error("DEF and USE statements are using different %s\n    sorry can't handle this\n", what);
  };
  if (present.coordNode != state.coordNode) fail("Coordinate3-Nodes");
  if (present.materialBinding != state.materialBinding) fail("Material-Bindings");
  if (present.materialNode != state.materialNode && state.materialBinding != OVERALL) {
    fail("Material-Nodes\n    and Material-Binding != OVERALL");
  }
  if (present.normalBinding != state.normalBinding) fail("Normal-Bindings");
  if (present.normalNode != state.normalNode && state.normalBinding != OVERALL) {
    fail("Normal-Nodes\n    and Normal-Binding != OVERALL");
  }
  if (present.textureCoordNode != state.textureCoordNode) fail("TextureCoordinate2-Nodes");
}

void ShapeNode::printTree(Output& out, int indent) {
  Node::printTree(out, indent);
  out.write(" (");
  for (const int field :
       {FIELD_coordIndex, FIELD_materialIndex, FIELD_normalIndex, FIELD_textureCoordIndex}) {
    const Field* present = getField(field);
    if (present == nullptr) continue;
    out.put(' ');
    out.write(fieldIdString[static_cast<std::size_t>(field)]);
    out.put(' ');
    out.writeInt(static_cast<int>(present->size()));
  }
  out.put(')');
}

OctreeCoordSet& ShapeNode::getCoordSet() const { return *state.coordNode->coordSet; }
const MaterialSet& ShapeNode::getMaterialSet() const { return *state.materialNode->materialSet; }
const NormalSet& ShapeNode::getNormalSet() const { return *state.normalNode->normalSet; }
const TextureCoordSet& ShapeNode::getTextureCoordSet() const {
  return *state.textureCoordNode->textureCoordSet;
}

CoordId ShapeNode::getCoordIndex(int index) const {
  const OctreeCoordSet& set = getCoordSet();
  if (index < 0 || index > set.getMaxIndex()) {
    error("index >%d< out of range in coordIndex\n", index);
  }
  return set.getCoord(index);
}

int ShapeNode::getMaterialIndex(int index) const {
  if (index < 0) error("index >%d< out of range in materialIndex\n", index);
  return getMaterialSet().getWrittenIndex(index);
}

int ShapeNode::getNormalIndex(int index) const {
  const NormalSet& set = getNormalSet();
  if (index < 0 || index > set.getMaxIndex()) {
    error("index >%d< out of range in normalIndex\n", index);
  }
  return set.getWrittenIndex(index);
}

int ShapeNode::getTextureCoordIndex(int index) const {
  const TextureCoordSet& set = getTextureCoordSet();
  if (index < 0 || index > set.getMaxIndex()) {
    error("index >%d< out of range in textureCoordIndex\n", index);
  }
  return set.getWrittenIndex(index);
}

std::span<const int> ShapeNode::beginShapeSet() {
  if (getKind().isVerbose) {
    message(getKind().prefix, "accesses:");
    const std::array<std::pair<const char*, const Node*>, 4> nodes = {
        {{"coo", state.coordNode},
         {"mat", state.materialNode},
         {"nor", state.normalNode},
         {"tex", state.textureCoordNode}}};
    for (const auto& [label, node] : nodes) {
      if (node->firstLine < 0) {
        std::printf(" %s(default)", label);
      } else {
        std::printf(" %s(%d-%d)", label, node->firstLine, node->lastLine);
      }
    }
    std::printf("\n");
  }
  if (getField(FIELD_materialIndex) != nullptr && isUseless(state.materialBinding)) {
    warning("useless materialIndex\n");
  }
  if (getField(FIELD_normalIndex) != nullptr && isUseless(state.normalBinding)) {
    warning("useless normalIndex\n");
  }
  if (getMaterialSet().count <= 1) materialBinding = OVERALL;

  std::span<const int> positions;
  if (const auto* list = getValue<FLong>(FIELD_coordIndex)) positions = list->values;
  getCoordSet().beginShape(positions, isWithLevels());
  return positions;
}

namespace {

// Formats the number itself: to leave progress to printf took 2.6 % of the instructions that small
// shapes take.
void printProgress(int level) {
  std::array<char, intRoom + 1> text;
  char* end = formatInt(text.data(), level);
  *end++ = ' ';
  std::fwrite(text.data(), 1, static_cast<std::size_t>(end - text.data()), stdout);
}

}  // namespace

void ShapeNode::generateLODs(Levels& levels) const {
  // Progress is shown at once where there is something to wait for. A million small shapes would
  // spend a third of their time in showing it.
  constexpr int largeSet = 1000;
  OctreeCoordSet& coordSet = getCoordSet();
  const Kind kind = getKind();
  coordSet.resetLODs();
  coordSet.setShapeType(kind.shapeType);
  if (kind.isVerbose) {
    message(kind.prefix, "uses %d of %d coord(s)\n", coordSet.getCountUsed(), coordSet.count);
  } else {
    printPlace(stdout);
    std::fputs(kind.progress, stdout);
  }
  while (coordSet.getCountUsed() > 1 && levels.back()->setCount > 0) {
    if (extractlod != -1 && coordSet.getCurrentLOD() >= extractlod) break;
    ShapeSet& set = *levels.back();
    coordSet.generateNextLOD(set);
    levels.push_back(set.generateNextLOD());
    set.range = coordSet.getRange();
    if (kind.isVerbose) {
      message(kind.prefix, "lod %d: ", coordSet.getCurrentLOD());
      printLevelStatistics(*levels.back());
    } else {
      printProgress(coordSet.getCurrentLOD());
      if (set.setCount >= largeSet) std::fflush(stdout);
    }
  }
  if (!kind.isVerbose) std::printf("\n");
}

NodeList ShapeNode::makeAttributeNodes() const {
  NodeList nodes;
  if (materialBinding != state.materialBinding) {
    nodes.push_back(makeBindingNode(NODE_MaterialBinding, materialBinding));
  }
  if (normalBinding != state.normalBinding) {
    nodes.push_back(makeBindingNode(NODE_NormalBinding, normalBinding));
  }
  if (auto hints = makeHints()) nodes.push_back(std::move(hints));
  return nodes;
}

void ShapeNode::print(Output& out, int indent) {
  Levels levels;
  levels.push_back(generateShapeSet());
  if (levels.front()->setCount == 0) {
    printEmpty(out, indent);
  } else {
    if (isWithLevels()) generateLODs(levels);
    printLevels(out, indent, levels);
  }
  cleanUpLast();
}

void ShapeNode::printEmpty(Output& out, int indent) const {
  int inner = indent;
  printHead(out, inner);
  printIndent(out, inner);
  out.write("coordIndex [ ]\n");
  printTail(out, indent);
  warning("empty node\n");
}

void ShapeNode::printLevels(Output& out, int indent, const Levels& levels) {
  const NodeList attributeNodes = makeAttributeNodes();
  const Node separator(NODE_Separator);
  const auto first = static_cast<std::size_t>(extractlod > 0 ? extractlod : 0);
  // A level that does not exist is written as nothing, unless a name needs a node to belong to.
  const bool isNameless = name.empty();
  const bool hasSeparator = !attributeNodes.empty() || (first >= levels.size() && !isNameless);

  // The name goes to the outermost node written.
  if (!isNameless) {
    out.write("DEF ");
    out.write(name);
    out.put(' ');
    name.clear();
  }
  int column = indent;
  if (hasSeparator) separator.printHead(out, column);
  for (const auto& node : attributeNodes) node->print(out, column);

  const bool hasLOD = nolods == 0 && extractlod == -1;
  const Node lod(NODE_LOD);
  int levelColumn = column;
  if (hasLOD) {
    lod.printHead(out, levelColumn);
    printRanges(out, levelColumn, levels);
  }
  for (std::size_t i = first; i < levels.size(); ++i) printLevel(out, levelColumn, *levels[i]);
  if (hasLOD) lod.printTail(out, column);
  if (hasSeparator) separator.printTail(out, indent);
}

// The fields of the LOD: each level but the last has the distance from which the next is shown.
void ShapeNode::printRanges(Output& out, int indent, const Levels& levels) const {
  const Kind kind = getKind();
  const double scale = state.getMaxScale();
  printIndent(out, indent);
  out.write("range [");
  if (kind.isVerbose) message(kind.prefix, "scale=%f\n", scale);
  for (std::size_t i = 0; i + 1 < levels.size(); ++i) {
    const ShapeSet& set = *levels[i];
    // A reader would not take more than the largest single.
    constexpr double most = std::numeric_limits<float>::max();
    const double range = std::min((double{set.getSphere()} + set.range) * scale, most);
    if (i > 0) out.put(',');
    printFloat(out, range);
    if (kind.isVerbose) message(kind.prefix, "range of lod %d = %f\n", set.lod, range);
  }
  out.write("]\n");
  printIndent(out, indent);
  out.write("center ");
  printVec(out, levels.front()->getCenter());
  out.put('\n');
}

// Frees the data sets that no other shape needs.
void ShapeNode::cleanUpLast() const {
  state.coordNode->removeUser();
  state.materialNode->removeUser();
  state.normalNode->removeUser();
  state.textureCoordNode->removeUser();
}

}  // namespace varimesh
