#include "picture.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>
#include <utility>

#include "driver/scene.h"
#include "reader/parser.h"
#include "reader/scanner.h"
#include "scene/leafnodes.h"

namespace varimesh {
namespace {

NodeList parse(std::string_view text) {
  Node::identifiers.clear();
  yacc_nolods = 1;
  lex_setText(text);
  if (yyparse() != 0) {
    std::fprintf(stderr, "not a scene:\n%.*s\n", static_cast<int>(text.size()), text.data());
    std::exit(EXIT_FAILURE);
  }
  lex_release();
  yacc_nolods = 0;
  return std::move(yacc_tree);
}

template <class V>
auto getList(Node* node, FieldId field) {
  const auto* list = node != nullptr ? node->getValue<V>(field) : nullptr;
  return list != nullptr ? std::span(list->values)
                         : std::span<const typename decltype(list->values)::value_type>();
}

std::string toText(float number) {
  std::array<char, 40> text;
  std::snprintf(text.data(), text.size(), " %.7g", double{number});
  return text.data();
}
std::string toText(const Vec& v) { return toText(v.x) + toText(v.y) + toText(v.z); }
std::string toText(const Vec2& v) { return toText(v.x) + toText(v.y); }

// An entry of a node that has any; a number that no entry has can be seen as well.
template <class List>
std::string getEntry(const List& list, std::size_t index) {
  if (list.empty()) return "";
  return index < list.size() ? toText(list[index]) : " missing";
}

// What is in force at some place of a scene.
struct Look {
  Node* coords = nullptr;
  Node* materials = nullptr;
  Node* normals = nullptr;
  Node* textureCoords = nullptr;
  int materialBinding = DEFAULT;
  int normalBinding = DEFAULT;
  std::string hints;
  std::string texture;
  std::string place;  // the anchors and alternatives around
  Vec scale{1, 1, 1};
  Vec offset;
};

// A node counts as many materials as its longest list has values; a shorter list goes on with its
// last value, and a missing one has the default. Beyond the last material it is the first again.
std::string getMaterial(const Look& look, std::size_t index) {
  constexpr std::array<FieldId, 4> colors = {FIELD_ambientColor, FIELD_diffuseColor,
                                             FIELD_specularColor, FIELD_emissiveColor};
  constexpr std::array<FieldId, 2> numbers = {FIELD_shininess, FIELD_transparency};
  std::size_t count = 1;
  for (const FieldId field : colors) {
    count = std::max(count, getList<FVec3f>(look.materials, field).size());
  }
  for (const FieldId field : numbers) {
    count = std::max(count, getList<FFloat>(look.materials, field).size());
  }
  const std::size_t number = index % count;
  const auto pick = [&](auto list, auto defaultValue) {
    return toText(list.empty() ? defaultValue : list[std::min(number, list.size() - 1)]);
  };
  constexpr std::array<float, 4> greys = {0.2F, 0.8F, 0, 0};
  std::string text = " material";
  for (std::size_t i = 0; i < colors.size(); ++i) {
    text += pick(getList<FVec3f>(look.materials, colors[i]), Vec(greys[i], greys[i], greys[i]));
  }
  text += pick(getList<FFloat>(look.materials, FIELD_shininess), 0.2F);
  return text + pick(getList<FFloat>(look.materials, FIELD_transparency), 0.0F);
}

// Numbers the entries that the corners of one polygon after the other take from a node.
class Numbering {
 public:
  Numbering(Node& shape, FieldId field, int binding)
      : binding_(binding),
        isLine_(shape.type == NODE_IndexedLineSet),
        hasList_(shape.getField(field) != nullptr),
        list_(getList<FLong>(&shape, field)) {}

  [[nodiscard]] bool isBySegment() const {
    return isLine_ && (binding_ == PER_PART || binding_ == PER_PART_INDEXED);
  }

  std::vector<int> next(std::span<const int> corners) {
    std::vector<int> result(corners.size(), 0);
    const std::size_t used = corners.size() - (isBySegment() ? 1 : 0);
    const bool isByCorner =
        isBySegment() || binding_ == PER_VERTEX || binding_ == PER_VERTEX_INDEXED;
    switch (binding_) {
      case PER_PART:
      case PER_FACE:
      case PER_VERTEX:
        for (std::size_t i = 0; i < used; ++i)
          result[i] = counted_ + (isByCorner ? static_cast<int>(i) : 0);
        counted_ += isByCorner ? static_cast<int>(used) : 1;
        break;
      case PER_PART_INDEXED:
      case PER_FACE_INDEXED:
      case PER_VERTEX_INDEXED:
        if (!isByCorner) {
          std::fill(result.begin(), result.end(), take());
          break;
        }
        for (std::size_t i = 0; i < used; ++i) result[i] = hasList_ ? take() : corners[i];
        if (!list_.empty() && list_.front() == -1) list_ = list_.subspan(1);
        break;
      default: break;
    }
    return result;
  }

 private:
  int take() {
    if (list_.empty()) return 0;
    const int index = list_.front();
    list_ = list_.subspan(1);
    return index;
  }

  int binding_;
  bool isLine_;
  bool hasList_;
  std::span<const int> list_;
  int counted_ = 0;
};

class Painter {
 public:
  std::vector<std::string> things;

  void draw(Node& node, Look& look) {
    switch (node.type) {
      case NODE_Coordinate3: look.coords = &node; break;
      case NODE_Material: look.materials = &node; break;
      case NODE_Normal: look.normals = &node; break;
      case NODE_TextureCoordinate2: look.textureCoords = &node; break;
      case NODE_Texture2: look.texture = printFields(node, FIELD_filename); break;
      case NODE_MaterialBinding: look.materialBinding = getWord(node, FIELD_value); break;
      case NODE_NormalBinding: look.normalBinding = getWord(node, FIELD_value); break;
      case NODE_ShapeHints:  // every face is written convex, so the face type may change
        look.hints = std::to_string(getWord(node, FIELD_vertexOrdering)) + "," +
                     std::to_string(getWord(node, FIELD_shapeType));
        break;
      case NODE_Translation: {
        const Vec v = getList<FVec3f>(&node, FIELD_translation).front();
        look.offset = toWorld(look, v);
        break;
      }
      case NODE_Scale: {
        const Vec v = getList<FVec3f>(&node, FIELD_scaleFactor).front();
        look.scale = {look.scale.x * v.x, look.scale.y * v.y, look.scale.z * v.z};
        break;
      }
      case NODE_IndexedFaceSet:
      case NODE_IndexedLineSet: drawShape(node, look); break;
      case NODE_PointSet: drawPoints(node, look); break;
      case NODE_Cone:
      case NODE_Cube:
      case NODE_Cylinder:
      case NODE_Sphere: drawParts(node, look); break;
      default:
        if (GroupNode* group = node.asGroup()) {
          drawGroup(*group, look);
        } else if (const UseNode* use = node.asUse()) {
          draw(use->resolve(), look);
        }
    }
  }

 private:
  static std::string printFields(Node& node, FieldId field) {
    const auto texts = getList<FString>(&node, field);
    return texts.empty() ? "" : texts.front();
  }
  static int getWord(Node& node, FieldId field) {
    const auto* word = node.getValue<FEnum>(field);
    return word != nullptr ? word->value : 0;
  }
  static Vec toWorld(const Look& look, const Vec& v) {
    return {look.offset.x + look.scale.x * v.x, look.offset.y + look.scale.y * v.y,
            look.offset.z + look.scale.z * v.z};
  }

  void drawGroup(GroupNode& group, Look& look) {
    const Look before = look;
    if (group.type == NODE_WWWAnchor) look.place += "/" + printFields(group, FIELD_name);
    if (group.type == NODE_LOD || group.type == NODE_Switch) look.place += "/choice";
    for (const auto& child : group.children) draw(*child, look);
    if (group.type == NODE_Separator || group.type == NODE_WWWAnchor) look = before;
    if (group.type == NODE_TransformSeparator) {
      look.scale = before.scale;
      look.offset = before.offset;
    }
    look.place = before.place;
  }

  // What all of a shape has in common.
  static std::string getSurroundings(const Look& look) {
    return look.place + " [" + look.hints + "] [" + look.texture + "] scale" + toText(look.scale);
  }

  void drawShape(Node& shape, const Look& look) {
    const auto points = getList<FVec3f>(look.coords, FIELD_point);
    const auto vectors = getList<FVec3f>(look.normals, FIELD_vector);
    const auto texturePoints = getList<FVec2f>(look.textureCoords, FIELD_point);
    const int normalBinding =
        look.normalBinding == DEFAULT ? int{PER_VERTEX_INDEXED} : look.normalBinding;
    Numbering materials(shape, FIELD_materialIndex, look.materialBinding);
    Numbering normals(shape, FIELD_normalIndex, normalBinding);
    Numbering textures(shape, FIELD_textureCoordIndex, PER_VERTEX_INDEXED);
    const bool isTextured = shape.getField(FIELD_textureCoordIndex) != nullptr;

    auto positions = getList<FLong>(&shape, FIELD_coordIndex);
    while (!positions.empty()) {
      const auto end = std::find(positions.begin(), positions.end(), -1);
      const auto n = static_cast<std::size_t>(end - positions.begin());
      const auto corners = positions.first(n);
      positions = positions.subspan(std::min(n + 1, positions.size()));
      const auto m = materials.next(corners);
      const auto v = normals.next(corners);
      const auto t = textures.next(corners);
      // A corner of a segment shows what is bound to the segment, which stands at its first corner.
      const auto describe = [&](std::size_t corner, std::size_t segment) {
        const auto at = [&](const Numbering& numbering, const std::vector<int>& numbers) {
          return static_cast<std::size_t>(numbers[numbering.isBySegment() ? segment : corner]);
        };
        const auto point = static_cast<std::size_t>(corners[corner]);
        std::string text = " (" + toText(toWorld(look, points[point])) +
                           getMaterial(look, at(materials, m)) + " normal";
        text += getEntry(vectors, at(normals, v));
        text += " texture";
        if (isTextured) text += getEntry(texturePoints, at(textures, t));
        return text + ")";
      };
      if (shape.type == NODE_IndexedLineSet || n == 2) {
        for (std::size_t i = 0; i + 1 < n; ++i) {
          things.push_back("segment" + getSurroundings(look) + describe(i, i) + describe(i + 1, i));
        }
      } else if (n > 2) {
        std::vector<std::string> outline;
        for (std::size_t i = 0; i < n; ++i) outline.push_back(describe(i, i));
        std::rotate(outline.begin(), std::min_element(outline.begin(), outline.end()),
                    outline.end());
        std::string text = "polygon" + getSurroundings(look);
        for (const std::string& corner : outline) text += corner;
        things.push_back(std::move(text));
      }
    }
  }

  void drawPoints(Node& node, const Look& look) {
    const auto points = getList<FVec3f>(look.coords, FIELD_point);
    const auto vectors = getList<FVec3f>(look.normals, FIELD_vector);
    const auto texturePoints = getList<FVec2f>(look.textureCoords, FIELD_point);
    const auto start = getList<FLong>(&node, FIELD_startIndex);
    const auto count = getList<FLong>(&node, FIELD_numPoints);
    const auto first = static_cast<std::size_t>(start.empty() ? 0 : start.front());
    const auto end = count.empty() || count.front() == -1
                         ? points.size()
                         : first + static_cast<std::size_t>(count.front());
    for (std::size_t i = first; i < std::min(end, points.size()); ++i) {
      std::string text = "point" + getSurroundings(look) + toText(toWorld(look, points[i])) +
                         getMaterial(look, look.materialBinding > OVERALL ? i : 0) + " normal";
      const std::size_t normal = look.normalBinding != OVERALL ? i : 0;
      if (normal < vectors.size()) text += toText(vectors[normal]);
      text += " texture";
      if (i < texturePoints.size()) text += toText(texturePoints[i]);
      things.push_back(std::move(text));
    }
  }

  void drawParts(Node& node, const Look& look) {
    const int binding = look.materialBinding;
    const bool isPerPart = binding == PER_PART || binding == PER_PART_INDEXED;
    const bool isPerFace = binding == PER_FACE || binding == PER_FACE_INDEXED;
    std::size_t parts = 1;
    if (node.type == NODE_Cone && isPerPart) parts = 2;
    if (node.type == NODE_Cube && (isPerPart || isPerFace)) parts = 6;
    if (node.type == NODE_Cylinder && isPerPart) parts = 3;
    std::string text(node.typeName());
    text += getSurroundings(look) + toText(look.offset);
    for (std::size_t i = 0; i < parts; ++i) text += getMaterial(look, i);
    things.push_back(std::move(text));
  }
};

}  // namespace

std::vector<std::string> drawScene(std::string_view text) {
  const NodeList nodes = parse(text);
  Painter painter;
  Look look;
  for (const auto& node : nodes) painter.draw(*node, look);
  std::sort(painter.things.begin(), painter.things.end());
  return painter.things;
}

Conversion convertScene(std::string_view text, bool isJoining) {
  Conversion result;
  Node::nolods = 1;
  auto scene = std::make_unique<Scene>(parse(text));
  scene->resolveDependencies();
  Node::removedcount = 0;
  if (isJoining) result.removed = scene->join();
  char* written = nullptr;
  std::size_t size = 0;
  std::FILE* file = open_memstream(&written, &size);
  {
    Output out(file);
    scene->print(out);
    out.flush();
  }
  std::fclose(file);
  result.text.assign(written, size);
  std::free(written);
  Node::nolods = 0;
  return result;
}

}  // namespace varimesh
