#include "values/value.h"

#include <span>
#include <string_view>

namespace varimesh {
namespace {

using namespace std::string_view_literals;

// The words of one kind of enumeration: the first stands for `first`, the others follow on.
struct Words {
  int first = 0;
  std::span<const std::string_view> words;
};

constexpr std::array familyWords = {"SERIF"sv, "SANS"sv, "TYPEWRITER"sv};
constexpr std::array orderingWords = {"UNKNOWN_ORDERING"sv, "CLOCKWISE"sv, "COUNTERCLOCKWISE"sv};
constexpr std::array shapeTypeWords = {"UNKNOWN_SHAPE_TYPE"sv, "SOLID"sv};
constexpr std::array faceTypeWords = {"UNKNOWN_FACE_TYPE"sv, "CONVEX"sv};
constexpr std::array wrapWords = {"REPEAT"sv, "CLAMP"sv};
constexpr std::array cullingWords = {"ON"sv, "OFF"sv, "AUTO"sv};
constexpr std::array bindingWords = {
    "DEFAULT"sv,  "OVERALL"sv,          "PER_PART"sv,   "PER_PART_INDEXED"sv,
    "PER_FACE"sv, "PER_FACE_INDEXED"sv, "PER_VERTEX"sv, "PER_VERTEX_INDEXED"sv};
constexpr std::array justificationWords = {"LEFT"sv, "CENTER"sv, "RIGHT"sv};
constexpr std::array mapWords = {"NONE"sv, "POINT"sv};

// Indexed by EnumKind; the two bit masks have no words of this form.
constexpr std::array<Words, 12> wordsOfKind = {{
    {},
    {0, familyWords},
    {0, orderingWords},
    {0, shapeTypeWords},
    {0, faceTypeWords},
    {0, wrapWords},
    {0, wrapWords},
    {0, cullingWords},
    {0, bindingWords},
    {},
    {0, justificationWords},
    {8, mapWords},
}};

struct MaskWord {
  int value;
  std::string_view text;
};

constexpr std::array<MaskWord, 8> partsWords = {{{0, "ALL"},
                                                 {1, "SIDES"},
                                                 {2, "BOTTOM"},
                                                 {3, "(SIDES|BOTTOM)"},
                                                 {4, "TOP"},
                                                 {5, "(SIDES|TOP)"},
                                                 {6, "(BOTTOM|TOP)"},
                                                 {7, "(SIDES|BOTTOM|TOP)"}}};
constexpr std::array<MaskWord, 5> styleWords = {
    {{0, "NONE"}, {8, "NONE"}, {16, "BOLD"}, {32, "ITALIC"}, {48, "(BOLD|ITALIC)"}}};

}  // namespace

void Value::printLn(Output& out, int indent) const {
  out.put('\n');
  printIndent(out, indent);
}

void FBool::print(Output& out, std::size_t) const { out.write(value != 0 ? "TRUE" : "FALSE"); }

void FEnum::print(Output& out, std::size_t) const {
  const Words& table = wordsOfKind[static_cast<std::size_t>(kind)];
  if (value >= table.first) {
    const auto position = static_cast<std::size_t>(value) - static_cast<std::size_t>(table.first);
    if (position < table.words.size()) return out.write(table.words[position]);
  }
  out.writeInt(value);
}

void FBitMask::print(Output& out, std::size_t) const {
  const auto table = kind == KIND_parts ? std::span<const MaskWord>(partsWords)
                                        : std::span<const MaskWord>(styleWords);
  for (const MaskWord& word : table) {
    if (word.value == value) return out.write(word.text);
  }
  out.writeInt(value);
}

void FImage::print(Output& out, std::size_t) const {
  for (const int number : value) {
    out.writeInt(number);
    out.put(' ');
  }
}

void FMatrix::print(Output& out, std::size_t) const {
  for (std::size_t i = 0; i < value.entries.size(); ++i) {
    if (i > 0) out.put(' ');
    printFloat(out, value.entries[i]);
  }
  out.put('\n');
}

void FRotation::print(Output& out, std::size_t) const {
  printVec(out, value.axis);
  out.put(' ');
  printFloat(out, value.angle);
}

void FFloat::print(Output& out, std::size_t i) const {
  printFloat(out, values[i]);
  ++global_cpl;
}

void FFloat::printLn(Output& out, int indent) const { breakLine(out, global_floatcpl, indent); }

void FLong::print(Output& out, std::size_t i) const {
  out.writeInt(values[i]);
  ++global_cpl;
}

void FLong::printLn(Output& out, int indent) const { breakLine(out, global_longcpl, indent); }

void FString::print(Output& out, std::size_t i) const {
  out.put('"');
  out.write(values[i]);
  out.put('"');
}

void FVec2f::print(Output& out, std::size_t i) const {
  printVec(out, values[i]);
  global_cpl += 2;
}

void FVec3f::print(Output& out, std::size_t i) const {
  printVec(out, values[i]);
  global_cpl += 3;
}

void printVec(Output& out, const Vec& v) {
  printFloat(out, v.x);
  out.put(' ');
  printFloat(out, v.y);
  out.put(' ');
  printFloat(out, v.z);
}

void printVec(Output& out, const Vec2& v) {
  printFloat(out, v.x);
  out.put(' ');
  printFloat(out, v.y);
}

}  // namespace varimesh
