#include "scene/attributenodes.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace varimesh {

int CoordNode::verbose = 0;
int MaterialNode::verbose = 0;
int NormalNode::verbose = 0;
int TextureCoordNode::verbose = 0;

void AttributeNode::print(Output& out, int indent) {
  isWritten_ = true;
  if (lastUser == nullptr && fixedUser == nullptr && used == 0) {
    warning("node is useless (no references)\n");
    deleteSet();
    return;
  }
  int inner = indent;
  printHead(out, inner);
  printData(out, inner);
  printTail(out, indent);
  if (users_ == 0) deleteSet();
}

void AttributeNode::addUser(Node* shape) {
  lastUser = shape;
  ++users_;
}

void AttributeNode::removeUser() {
  if (--users_ == 0 && isWritten_) deleteSet();
}

void AttributeNode::printStatistics(const char* prefix, std::size_t values,
                                    const DataSet& set) const {
  message(prefix, "list=%d set=%d uncompressed=%d\n", static_cast<int>(values), set.count,
          set.uncompressed);
}

void CoordNode::printData(Output& out, int indent) {
  auto* point = getValue<FVec3f>(FIELD_point);
  if (point == nullptr) return warning("no points\n");

  const std::vector<Vec> points = std::move(point->values);
  const Vec& first = points.front();
  Bounds bounds(first.x, first.y, first.z, first.x, first.y, first.z);
  for (const Vec& p : points) bounds.enlargeIfOutside(p.x, p.y, p.z);
  coordSet->setBounds(bounds);
  if (verbose != 0) {
    message("coord", "min= %f %f %f\n", double{bounds.minX}, double{bounds.minY},
            double{bounds.minZ});
    message("coord", "max= %f %f %f\n", double{bounds.maxX}, double{bounds.maxY},
            double{bounds.maxZ});
  }
  coordSet->reserve(points.size());
  for (const Vec& p : points) coordSet->insert(Coord(p.x, p.y, p.z));
  coordSet->print(out, indent);
  if (verbose != 0) printStatistics("coord", points.size(), *coordSet);
}

void NormalNode::printData(Output& out, int indent) {
  auto* vector = getValue<FVec3f>(FIELD_vector);
  if (vector == nullptr) return warning("no vectors\n");

  const std::vector<Vec> vectors = std::move(vector->values);
  normalSet->reserve(vectors.size());
  for (const Vec& v : vectors) normalSet->insert(Normal(v.x, v.y, v.z));
  normalSet->print(out, indent);
  if (verbose != 0) printStatistics("normal", vectors.size(), *normalSet);
}

void TextureCoordNode::setupDepends(State& state) {
  if (savedState.textureNode != nullptr && savedState.textureNode != state.textureNode) {
    error(
        "DEF and USE statements are using different Texture2-Nodes\n    sorry can't handle this\n");
  }
  state.textureCoordNode = this;
  savedState = state;
}

void TextureCoordNode::printData(Output& out, int indent) {
  auto* point = getValue<FVec2f>(FIELD_point);
  if (point == nullptr) return warning("no points\n");

  const std::vector<Vec2> points = std::move(point->values);
  textureCoordSet->reserve(points.size());
  for (const Vec2& p : points) textureCoordSet->insert(TextureCoord(p.x, p.y));
  textureCoordSet->print(out, indent);
  if (verbose != 0) printStatistics("texcoord", points.size(), *textureCoordSet);
}

namespace {

// What verbose output calls the fields of a material, in the order of materialFields.
constexpr std::array<const char*, 6> shortNames = {" amb",  " diff", " spec",
                                                   " emis", " shin", " trans"};
constexpr std::array<const char*, 6> treeNames = {" ambient",  " diffuse",   " specular",
                                                  " emissive", " shininess", " transparency"};

}  // namespace

// A list that is shorter than the longest keeps its last value for the materials that follow.
void MaterialNode::printData(Output& out, int indent) {
  if (fields.empty()) warning("empty node\n");

  std::array<std::vector<Vec>, 4> colors;
  std::array<std::vector<float>, 2> numbers;
  if (verbose != 0) message("material", "fields:");
  std::size_t longest = 0;
  for (std::size_t i = 0; i < materialFields.size(); ++i) {
    const int number = materialFields[i];
    std::size_t size = 0;
    if (i < colors.size()) {
      if (auto* value = getValue<FVec3f>(number)) colors[i] = std::move(value->values);
      size = colors[i].size();
    } else {
      auto& list = numbers[i - colors.size()];
      if (auto* value = getValue<FFloat>(number)) list = std::move(value->values);
      size = list.size();
    }
    if (size == 0) continue;
    materialSet->mask |= 1U << i;
    longest = std::max(longest, size);
    if (verbose != 0) std::fputs(shortNames[i], stdout);
  }
  if (verbose != 0) std::fputs("\n", stdout);

  Material material;
  const std::array<RGB*, 4> colorSlots = {&material.ambientColor, &material.diffuseColor,
                                          &material.specularColor, &material.emissiveColor};
  const std::array<float*, 2> numberSlots = {&material.shininess, &material.transparency};
  materialSet->reserve(longest);
  for (std::size_t i = 0; i < longest; ++i) {
    for (std::size_t k = 0; k < colors.size(); ++k) {
      if (i < colors[k].size()) colorSlots[k]->setTo(colors[k][i]);
    }
    for (std::size_t k = 0; k < numbers.size(); ++k) {
      if (i < numbers[k].size()) *numberSlots[k] = numbers[k][i];
    }
    materialSet->insert(material);
  }
  materialSet->print(out, indent);
  if (verbose != 0) printStatistics("material", longest, *materialSet);
}

void MaterialNode::printTree(Output& out, int indent) {
  Node::printTree(out, indent);
  out.write(" (");
  for (std::size_t i = 0; i < materialFields.size(); ++i) {
    const Field* present = getField(materialFields[i]);
    if (present == nullptr || present->size() == 0) continue;
    out.write(treeNames[i]);
    out.put(' ');
    out.writeInt(static_cast<int>(present->size()));
  }
  out.put(')');
}

}  // namespace varimesh
