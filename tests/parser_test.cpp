#include "reader/parser.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

#include "reader/scanner.h"
#include "scene/attributenodes.h"
#include "scene/bindingnodes.h"
#include "scene/cameranodes.h"
#include "scene/groupnodes.h"
#include "scene/leafnodes.h"
#include "scene/transformnodes.h"
#include "shapes/facenode.h"
#include "shapes/linenode.h"
#include "shapes/simpleshapes.h"

namespace varimesh {
namespace {

// Every node type with all its fields, in the form in which they are written, and its class.
struct Sample {
  std::string type;
  const std::type_info& built;
  std::string fields;
  bool isGroup = false;
};
const Sample samples[] = {
    {"AsciiText", typeid(Node),
     "string [ \"a\\\"b\", \"\" ] spacing 1.5 justification RIGHT width [ 1, 2, 3 ]"},
    {"Cone", typeid(ConeNode), "parts (SIDES|BOTTOM) bottomRadius 1 height 2"},
    {"Coordinate3", typeid(CoordNode), "point [ 1 2 3, -4.5 0.25 6 ]"},
    {"Cube", typeid(CubeNode), "width 1 height 2 depth 3"},
    {"Cylinder", typeid(CylinderNode), "parts ALL radius 1 height 2"},
    {"DirectionalLight", typeid(Node), "on TRUE intensity 0.5 color 1 0 0 direction 0 0 -1"},
    {"FontStyle", typeid(Node), "size 10 family TYPEWRITER style (BOLD|ITALIC)"},
    {"Group", typeid(GroupNode), "", true},
    {"IndexedFaceSet", typeid(FaceNode),
     "coordIndex [ 0, 1, 2, -1 ] materialIndex 5 normalIndex [ ] textureCoordIndex [ 1, 2 ]"},
    {"IndexedLineSet", typeid(LineNode),
     "coordIndex [ 0, 1, -1 ] materialIndex [ ] normalIndex 1 textureCoordIndex [ 1, 2 ]"},
    {"Info", typeid(Node), "string \"some text\""},
    {"LOD", typeid(GroupNode), "range [ 1, 2.5 ] center [ 1 2 3, 4 5 6 ]", true},
    {"LevelOfDetail", typeid(GroupNode), "screenArea [ 1, 2 ] center 1 2 3", true},
    {"Material", typeid(MaterialNode),
     "ambientColor 1 1 1 diffuseColor [ 1 0 0, 0 1 0 ] specularColor 0 0 1 emissiveColor [ ] "
     "shininess [ 0.1, 0.2 ] transparency 0.5"},
    {"MaterialBinding", typeid(MaterialBindingNode), "value PER_FACE_INDEXED"},
    {"MatrixTransform", typeid(MatrixTransformNode),
     "matrix 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16"},
    {"Normal", typeid(NormalNode), "vector [ 0 0 1, 0 1 0 ]"},
    {"NormalBinding", typeid(NormalBindingNode), "value PER_VERTEX"},
    {"OrthographicCamera", typeid(OrthographicCameraNode),
     "position 1 2 3 orientation 0 0 1 0.5 focalDistance 5 height 2"},
    {"PerspectiveCamera", typeid(PerspectiveCameraNode),
     "position 1 2 3 orientation 0 0 1 0.5 focalDistance 5 heightAngle 0.75"},
    {"PointLight", typeid(Node), "on FALSE intensity 1 color 1 1 1 location 0 0 1"},
    {"PointSet", typeid(PointNode), "startIndex 1 numPoints -1"},
    {"Rotation", typeid(RotationNode), "rotation 0 0 1 1.5"},
    {"Scale", typeid(ScaleNode), "scaleFactor 1 2 3"},
    {"Separator", typeid(SeparatorNode), "renderCulling AUTO", true},
    {"ShapeHints", typeid(ShapeHintsNode),
     "vertexOrdering CLOCKWISE shapeType SOLID faceType UNKNOWN_FACE_TYPE creaseAngle 0.5"},
    {"Sphere", typeid(SphereNode), "radius 7"},
    {"SpotLight", typeid(Node),
     "on TRUE intensity 1 color 1 1 1 location 0 0 1 direction 0 0 -1 dropOffRate 0.5 "
     "cutOffAngle 0.25"},
    {"Switch", typeid(GroupNode), "whichChild -1", true},
    {"Texture2", typeid(TextureNode),
     "filename \"a.gif\" image 1 2 1 255 0 wrapS CLAMP wrapT REPEAT"},
    {"Texture2Transform", typeid(Node), "translation 1 2 rotation 3 scaleFactor 4 5 center 6 7"},
    {"TextureCoordinate2", typeid(TextureCoordNode), "point [ 0 0, 0.5 1 ]"},
    {"Transform", typeid(TransformNode),
     "translation 1 2 3 rotation 0 0 1 2 scaleFactor 1 1 1 scaleOrientation 0 1 0 3 center 4 5 6"},
    {"TransformSeparator", typeid(TransformSeparatorNode), "", true},
    {"Translation", typeid(TranslationNode), "translation 1 2 3"},
    {"WWWAnchor", typeid(SeparatorNode), "name \"a\" description \"b\" map POINT", true},
    {"WWWInline", typeid(Node), "name \"a\" bboxSize 1 2 3 bboxCenter 4 5 6"},
};

// One blank for any white space, and behind every comma.
std::string squeeze(std::string_view text) {
  std::string spaced;
  for (const char c : text) (spaced += c) += c == ',' ? " " : "";
  std::istringstream words(spaced);
  std::string result;
  for (std::string word; words >> word;) {
    if (!result.empty()) result += ' ';
    result += word;
  }
  return result;
}

std::string show(const std::vector<std::unique_ptr<Node>>& nodes) {
  std::string result;
  for (const auto& node : nodes) {
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* file = open_memstream(&text, &size);
    Output out(file);
    int indent = 0;
    if (dynamic_cast<UnknownNode*>(node.get()) != nullptr || node->asUse() != nullptr) {
      testing::internal::CaptureStderr();
      node->print(out, 0);
      testing::internal::GetCapturedStderr();
    } else {
      node->Node::printHead(out, indent);
      node->printFields(out, indent);
      if (GroupNode* group = node->asGroup()) out.write(show(group->children) + "\n");
      node->printTail(out, indent);
    }
    out.flush();
    std::fclose(file);
    if (!result.empty()) result += ' ';
    result += squeeze({text, size});
    std::free(text);
  }
  return result;
}

class Parser : public testing::Test {
 protected:
  void SetUp() override { yacc_nolods = 0; }
  void TearDown() override {
    yacc_tree.clear();
    Node::identifiers.clear();
    yacc_nolods = 0;
  }

  int parse(std::string_view text) {
    yacc_tree.clear();
    Node::identifiers.clear();
    lex_setText(text);
    testing::internal::CaptureStderr();
    const int result = yyparse();
    messages = testing::internal::GetCapturedStderr();
    return result;
  }
  // The tree that the text gives, written in one line.
  std::string read(std::string_view text) {
    EXPECT_EQ(parse(text), 0) << text;
    EXPECT_EQ(messages, "") << text;
    return show(yacc_tree);
  }
  // The place of the parse error that the text gives, as "line text".
  std::string errorIn(std::string_view text) {
    EXPECT_EQ(parse(text), 1) << text;
    const std::string between = ": parse error at or before '";
    const std::size_t at = messages.find(between);
    if (!messages.starts_with("error: ") || !messages.ends_with("'\n") || at == messages.npos) {
      return messages;
    }
    const std::string line = messages.substr(7, at - 7);
    messages.resize(messages.size() - 2);
    return line + " " + messages.substr(at + between.size());
  }

  std::string messages;
};

TEST_F(Parser, EveryNodeTypeIsReadAndWrittenBack) {
  yacc_nolods = 1;
  for (const Sample& sample : samples) {
    const std::string& fields = sample.fields;
    for (const bool declared : {false, true}) {
      if (declared && sample.type == "Group") continue;
      std::string text = "DEF x " + sample.type + " { ";
      if (declared) text += "fields [ SFLong ] ";
      if (!fields.empty()) text += fields + " " + fields + " ";  // repetitions are admitted
      if (sample.isGroup) text += "Cube { } DEF y Cube { } USE x ";
      text += "}";
      EXPECT_EQ(read(text), text);
    }
    const Node& node = *yacc_tree.at(0);
    EXPECT_EQ(typeid(node), sample.built) << sample.type;
    EXPECT_EQ(Node::identifiers.search("x"), &node);
  }
}

TEST_F(Parser, NoNodeAdmitsFieldsOfOthers) {
  yacc_nolods = 1;
  for (const Sample& sample : samples) {
    for (int i = 0; i < FIELD_NONE; ++i) {
      const std::string field(fieldIdString[static_cast<std::size_t>(i)]);
      if ((" " + sample.fields).find(" " + field + " ") != std::string::npos) continue;
      EXPECT_EQ(errorIn(sample.type + " {\n" + field + " 1 }"), "2 " + field);
    }
    if (!sample.isGroup) {
      EXPECT_EQ(errorIn(sample.type + " {\nDEF x Cube { } }"), "2 DEF");
      EXPECT_EQ(errorIn(sample.type + " { Foo { } }"), "1 Foo");
    }
  }
}

TEST_F(Parser, FormsOfValues) {
  // The same value in another form than the one that is written.
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"Coordinate3 { point [ 1 2.0 0x3, 1e1 5. .5, ] }", "point [ 1 2 3, 10 5 0.5 ]"},
      {"Coordinate3 { point [ 1 2 3 ] point 1 2 3 }", "point 1 2 3 point 1 2 3"},
      {"Coordinate3 { point [ 1 2\n#]\n3#,\n, #\n4 5 6#\n]}", "point [ 1 2 3, 4 5 6 ]"},
      {"Cone{parts(SIDES|BOTTOM)parts( 1|2 )}", "parts (SIDES|BOTTOM) parts (SIDES|BOTTOM)"},
      {"Cone { parts ( TOP ) parts 1 parts (ALL|8) }", "parts TOP parts SIDES parts 8"},
      {"ShapeHints { vertexOrdering SIDES shapeType 99 }", "vertexOrdering CLOCKWISE shapeType 99"},
      {"PointLight { on 5 on OVERALL on 0 on ON }", "on TRUE on TRUE on FALSE on FALSE"},
      {"IndexedFaceSet { coordIndex [ TRUE , -1, 017, ] }", "coordIndex [ 1, -1, 15 ]"},
      {"IndexedFaceSet { coordIndex [ 4294967297, 100000001 ,123456789\n, -1, -12, 0, 10 ] }",
       "coordIndex [ 2147483647, 100000001, 123456789, -1, -12, 0, 10 ]"},
      {"AsciiText { string \"a\" string [ \"b\" , ] string [] }",
       "string \"a\" string \"b\" string [ ]"},
      {"Texture2 { image 0 0 0 image 1 1 4 0xffffffff }", "image 0 0 0 image 1 1 4 -1"},
      {"Sphere { radius 4e38 }", "radius 340282346638528859811704183484516925440"},
  };
  for (const auto& [text, fields] : cases) {
    EXPECT_EQ(parse(text), 0) << text;
    const std::string node = show(yacc_tree);
    EXPECT_EQ(node.substr(0, node.size() - 2).substr(node.find('{') + 2), fields);
  }
}

TEST_F(Parser, ErrorsNameLineAndText) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"}", "1 }"},
      {"\nCube\n\n}", "4 }"},
      {"Cube {\n", "2 "},
      {"Cube { width \"a\nb\" }", "2 a\nb\""},
      {"Cube { width 1 2 }", "1 2"},
      {"Cube { width }", "1 }"},
      {"Cube { width [ 1 ] }", "1 ["},
      {"Cube { width 1 fields [ a\n] }", "1 fields"},
      {"Cube { fields [] fields [] }", "1 fields"},
      {"Cube { fields 5 }", "1 5"},
      {"Cube { fields [ a", "1 "},
      {"Group { fields [] }", "1 fields"},
      {"Group { Cube { }\nUSE }", "2 }"},
      {"Separator { Cube { } renderCulling ON }", "1 renderCulling"},
      {"DEF x USE y", "1 USE"},
      {"DEF x DEF y Cube { }", "1 DEF"},
      {"DEF 7x Cube { }", "1 7"},
      {"DEF", "1 "},
      {"USE\n", "2 "},
      {"Foo", "1 "},
      {"Foo { {\n}", "2 "},
      {"Separator { Foo\n}\n}", "2 }"},
      {"Info { string \"a", "1 "},
      {"Info { string [ \"a\" ] }", "1 ["},
      {"Coordinate3 { point [ 1 2 3, 4 5, 6 ] }", "1 ,"},
      {"Coordinate3 { point [ 1 2 3\n4 5 6 ] }", "2 4"},
      {"Coordinate3 { point [ , ] }", "1 ,"},
      {"Coordinate3 { point [ 1 2 3,, ] }", "1 ,"},
      {"Coordinate3 { point [ 1 2 3,\n\n1 ] }", "3 ]"},
      {"Coordinate3 { point [ 1 2 3", "1 "},
      {"Coordinate3 { point 1 2 3, }", "1 ,"},
      {"IndexedFaceSet { coordIndex [ 1, 1.0 ] }", "1 1.0"},
      {"IndexedFaceSet { coordIndex [ 1, -0, 2 ] }", "1 -0"},
      {"IndexedFaceSet { coordIndex [ 1, 00, 2 ] }", "1 00"},
      {"IndexedFaceSet { coordIndex [ TRUE, 1 ] }", "1 TRUE,"},
      {"PointLight { on 1.0 }", "1 1.0"},
      {"Cone { parts ( ) }", "1 )"},
      {"Cone { parts ( SIDES | ) }", "1 )"},
      {"Cone { parts ( SIDES , TOP ) }", "1 ,"},
      {"Cone { parts SIDES|TOP }", "1 SIDES|TOP"},
      {"Texture2 { image 1 1 }", "1 }"},
      {"Texture2 { image 1 1 1 0.5 }", "1 0.5"},
      {"MatrixTransform { matrix 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 }", "1 }"},
  };
  for (const auto& [text, place] : cases) EXPECT_EQ(errorIn(text), place) << text;
  EXPECT_EQ(errorIn("DEF x Cube { } 5"), "1 5");
  EXPECT_EQ(Node::identifiers.search("x"), nullptr);
}

TEST_F(Parser, LinesOfNodes) {
  EXPECT_EQ(parse("#\nSeparator\n{ Cube {\n} # \n USE\n\n x Foo {\n} }\n\n\n"), 0);
  const auto lines = [](const Node& node) { return std::pair(node.firstLine, node.lastLine); };
  const auto& children = yacc_tree.at(0)->asGroup()->children;
  EXPECT_EQ(lines(*yacc_tree[0]), std::pair(2, 8));
  EXPECT_EQ(lines(*children.at(0)), std::pair(3, 4));
  EXPECT_EQ(lines(*children.at(1)), std::pair(5, 5));
  EXPECT_EQ(lines(*children.at(2)), std::pair(7, 8));
}

TEST_F(Parser, FilesAndUnknownNodes) {
  EXPECT_EQ(read("#VRML V1.0 ascii\n# nothing\n"), "");
  EXPECT_EQ(read("DEF x Foo { a { } } Group { Bar { } } USE x"),
            "DEF x Foo { a { } } Group { Bar { } } USE x");
  EXPECT_NE(Node::identifiers.search("x"), nullptr);
}

// The last node of a name counts, unless a name that comes right behind it in the alphabet has been
// met in between.
TEST_F(Parser, NamesGivenTwice) {
  read("DEF b Cube { } DEF a Cube { } DEF a Cone { }");
  EXPECT_EQ(Node::identifiers.search("a"), yacc_tree.at(2).get());
  read("DEF a Cube { } DEF b Cube { } DEF a Cone { }");
  EXPECT_EQ(Node::identifiers.search("a"), yacc_tree.at(0).get());
}

TEST_F(Parser, LevelsOfDetailAreRefusedAtTheirEnd) {
  EXPECT_EQ(parse("LOD { Cube { } }"), 1);
  EXPECT_EQ(messages, "error: this file already contains Levels of Detail\n");
  EXPECT_EQ(parse("Group { LevelOfDetail { } + }"), 1);
  EXPECT_EQ(messages, "error: this file already contains Levels of Detail\n");
  EXPECT_EQ(errorIn("LOD { Cube { width } }"), "1 }");
}

std::string nested(const std::string& opening, std::size_t depth) {
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) text += opening;
  return text + "Cube { }" + std::string(depth, '}');
}

TEST_F(Parser, DepthOfNesting) {
  EXPECT_EQ(parse(nested("Separator {", 16000)), 0);
  EXPECT_EQ(parse(nested("Group {", 16000)), 0);
  yacc_nolods = 1;
  for (const Sample& sample : samples) {
    if (!sample.isGroup) continue;
    EXPECT_EQ(parse(nested(sample.type + "\n{", 100000)), 2) << sample.type;
    EXPECT_NE(messages.find(": parser stack overflow at or before '" + sample.type),
              std::string::npos);
  }
  // A group takes four entries of the stack.
  const auto groups = [](int depth) {
    const auto n = static_cast<std::size_t>(depth);
    return nested("Group {", n).replace(7 * n, 8, "");
  };
  EXPECT_EQ(parse(groups(25000)), 0);
  EXPECT_EQ(parse(groups(25001)), 2);
  // Siblings and closed groups are not nested.
  std::string text = "Separator {";
  for (int i = 0; i < 100000; ++i) text += "Group { Group { } }\n";
  EXPECT_EQ(parse(text + "}"), 0);
}

TEST_F(Parser, LargeImagesAndLists) {
  std::string image = "Texture2 { image 1024 1024 1";
  for (int i = 0; i < 1024 * 1024; ++i) image += " 0xff";
  EXPECT_EQ(parse(image + "}"), 0);
  EXPECT_EQ(yacc_tree.at(0)->getValue<FImage>(FIELD_image)->value.size(), 3u + 1024 * 1024);
}

}  // namespace
}  // namespace varimesh
