// Joining, line sets and what shapes take from their surroundings, through the program: small
// scenes with the output that the rules give.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "program.h"

namespace varimesh {
namespace {

struct Joined {
  ProgramResult result;
  std::string text;  // written, without the header node, every run of white space as one blank
  int removed = -1;
};

std::string squeeze(const std::string& text) {
  std::string squeezed;
  for (const char c : text) {
    const bool isBlank = c == ' ' || c == '\t' || c == '\n';
    if (!isBlank) {
      squeezed += c;
    } else if (!squeezed.empty() && squeezed.back() != ' ') {
      squeezed += ' ';
    }
  }
  return squeezed;
}

// The scene stands in a separator that cannot be joined with anything.
Joined run(const std::string& scene, std::vector<std::string> options = {"-n", "-j"}) {
  const TempDir dir;
  dir.write("in.wrl", "#VRML V1.0 ascii\nSeparator {\n" + scene + "\n}\n");
  options.insert(options.end(), {"-o", "out.wrl", "in.wrl"});
  Joined joined;
  joined.result = runProgram(options, dir.path());
  joined.text = squeeze(readFile(dir.path() / "out.wrl"));
  const std::size_t begin = joined.text.find("} ", joined.text.find("Info {"));
  if (begin != std::string::npos) joined.text.erase(0, begin + 2);
  if (const auto at = joined.result.out.rfind(" Nodes removed."); at != std::string::npos) {
    joined.removed = std::stoi(joined.result.out.substr(joined.result.out.rfind(' ', at - 1)));
  }
  return joined;
}

// A triangle at height z, in a separator of its own.
std::string triangle(int z, const std::string& attributes, const std::string& lists = "",
                     const std::string& type = "IndexedFaceSet") {
  const std::string h = std::to_string(z);
  return "Separator { " + attributes + " Coordinate3 { point [ 0 0 " + h + ", 1 0 " + h + ", 0 1 " +
         h + " ] } " + type + " { coordIndex [ 0,1,2 ] " + lists + " } }\n";
}

const std::string points = "point [ 0 0 0,1 0 0, 0 1 0,0 0 1, 1 0 1,0 1 1 ]";

TEST(Join, EqualSeparatorsBecomeOne) {
  // Both are alike: the second takes in the first, and is dissolved as the last child.
  const Joined twice = run(triangle(0, "") + triangle(1, ""));
  EXPECT_EQ(twice.removed, 4);
  EXPECT_EQ(twice.text, "Coordinate3 { " + points +
                            " } IndexedFaceSet { coordIndex [ 0,1,2,-1,3,4,5,-1 ] } } ");
  // Not the last child: it stays.
  EXPECT_EQ(run(triangle(0, "") + triangle(1, "") + "Cube { }").removed, 3);
  // One that a USE refers to stays as it is, and so does what is not shown together.
  EXPECT_EQ(run("DEF A " + triangle(0, "") + triangle(1, "") + "USE A Cube { }").removed, 0);
  EXPECT_EQ(run(triangle(0, "") + "DEF A " + triangle(1, "") + "USE A Cube { }").removed, 0);
  EXPECT_EQ(run("Separator { } DEF A Separator { } USE A Cube { }").removed, 0);
  EXPECT_EQ(run("DEF A Group { " + triangle(0, "") + triangle(1, "") + "} USE A").removed, 0);
  // Nor do groups meet that declare other fields.
  EXPECT_EQ(run(triangle(0, "fields [ SFLong a ]") + triangle(1, "") + "Cube { }").removed, 0);
  EXPECT_EQ(run("Switch { " + triangle(0, "") + triangle(1, "") + " } Cube { }").removed, 0);
  EXPECT_EQ(run("LOD { " + triangle(0, "") + triangle(1, "") + " } Cube { }").removed, 0);
}

TEST(Join, DifferingMaterialsBecomeIndices) {
  const Joined colours = run(triangle(0, "Material { diffuseColor 1 0 0 }") +
                             triangle(1, "Material { diffuseColor 0 1 0 }") + "Cube { }");
  EXPECT_EQ(colours.removed, 5);  // with the binding that was put in front of the first
  EXPECT_NE(colours.text.find("diffuseColor [ 1 0 0,0 1 0 ]"), std::string::npos);
  EXPECT_NE(colours.text.find("MaterialBinding { value PER_FACE_INDEXED } IndexedFaceSet { "
                              "coordIndex [ 0,1,2,-1,3,4,5,-1 ] materialIndex [ 0,1 ]"),
            std::string::npos)
      << colours.text;

  // Numbers beyond a node's materials start again from its first, and a short list goes on.
  const std::string byFace = "MaterialBinding { value PER_FACE_INDEXED }";
  const Joined wrapped = run(
      triangle(0, "Material { diffuseColor [ 1 0 0, 0 1 0 ] shininess 0.5 }" + byFace,
               "materialIndex [ 3 ]") +
      triangle(1, "Material { diffuseColor [ 0 0 1, 1 1 0 ] }" + byFace, "materialIndex [ 2 ]") +
      "Cube { }");
  EXPECT_NE(wrapped.text.find("materialIndex [ 1,2 ]"), std::string::npos) << wrapped.text;
  EXPECT_NE(wrapped.text.find("shininess [ 0.5,0.5,0.2 ]"), std::string::npos) << wrapped.text;

  // Line sets get no indices made.
  const Joined refused =
      run(triangle(0, "Material { diffuseColor 1 0 0 }", "", "IndexedLineSet") +
          triangle(1, "Material { diffuseColor 0 1 0 }", "", "IndexedLineSet") + "Cube { }");
  EXPECT_EQ(refused.result.status, 1);
  EXPECT_EQ(refused.result.err,
            "error: 3-3 IndexedLineSet: join mode is material - second materiaIndex == NULL\n");
}

TEST(Join, WhatWouldShowIsNotJoined) {
  // A separator in a group that has something behind it must keep what it sets to itself.
  const std::string inner = "Separator { Material { diffuseColor 1 0 0 } Sphere { } }";
  EXPECT_EQ(run("Group { " + inner + " } Cube { }").removed, 0);
  EXPECT_EQ(run("Group { " + inner + " }").removed, 2);
  // A separator round it keeps that from what is behind, and so does one further out.
  EXPECT_EQ(run("Separator { " + inner + " } Cube { }").removed, 1);
  EXPECT_EQ(run("Separator { Group { " + inner + " } } Cube { }").removed, 2);
  // What a group sets is seen behind it: by nobody, by the cube at the end, or by the group
  // between.
  const auto group = [](const std::string& colour) {
    return "Group { Material { diffuseColor " + colour + " } Coordinate3 { " + points +
           " } IndexedFaceSet { coordIndex [ 0,1,2 ] } }";
  };
  EXPECT_EQ(run(group("1 0 0") + group("0 1 0")).removed, 6);
  EXPECT_EQ(run(group("1 0 0") + group("0 1 0") + "Cube { }").removed, 0);
  EXPECT_EQ(run(group("1 0 0") + group("1 0 0") + "Cube { }").removed, 4);
  EXPECT_EQ(run(group("1 0 0") + "Group { Cube { } }" + group("1 0 0") + "Cube { }").removed, 0);
  const std::string binding = "Group { NormalBinding { value OVERALL } } ";
  EXPECT_EQ(run(binding + binding + "Cube { }").removed, 2);
  EXPECT_EQ(run(binding + "Group { Cube { } }" + binding + "Cube { }").removed, 0);
  // Numbers out of range stay an error.
  const Joined wrong =
      run("Separator { Coordinate3 { point [ 0 0 0, 1 0 0, 0 1 0 ] } IndexedFaceSet "
          "{ coordIndex [ 0,1,5 ] } }" +
          triangle(1, "") + "Cube { }");
  EXPECT_EQ(wrong.removed, 0);
  EXPECT_EQ(wrong.result.status, 1);
}

TEST(Join, TellsWhatIsDeleted) {
  const Joined told =
      run("DEF A Material { diffuseColor 1 0 0 }\nMaterial { diffuseColor 0 1 0 }\n" +
              triangle(0, "") + "Cube { }",
          {"-n", "-j", "-v", "join"});
  EXPECT_EQ(told.removed, 1);
  EXPECT_NE(told.result.out.find("joining ...join: 3-3 Material: deleting node Material with DEF "
                                 ">A<\n 1 Nodes removed.\n"),
            std::string::npos)
      << told.result.out;
}

// A face set that a USE shows again is written once, so its surroundings must be the same.
TEST(Shapes, AreShownAgainInEqualSurroundings) {
  const std::string face =
      "Coordinate3 { " + points + " } DEF F IndexedFaceSet { coordIndex [ 0,1,2 ] } ";
  const std::string sorry = "\n    sorry can't handle this\n";
  const struct {
    std::string before, between, what;
  } cases[] = {
      {"", "Coordinate3 { " + points + " }", "Coordinate3-Nodes"},
      {"", "MaterialBinding { value PER_FACE }", "Material-Bindings"},
      {"", "NormalBinding { value PER_FACE }", "Normal-Bindings"},
      {"MaterialBinding { value PER_FACE }", "Material { }",
       "Material-Nodes\n    and Material-Binding != OVERALL"},
      {"", "Normal { }", "Normal-Nodes\n    and Normal-Binding != OVERALL"},
      {"", "TextureCoordinate2 { }", "TextureCoordinate2-Nodes"},
  };
  for (const auto& [before, between, what] : cases) {
    const Joined refused = run(before + face + between + " USE F");
    EXPECT_EQ(refused.result.status, 1);
    EXPECT_EQ(refused.result.err,
              "error: 3-3 IndexedFaceSet: DEF and USE statements are using "
              "different " +
                  what + sorry);
  }
  // One material, or one normal, for the whole shape may be another one.
  EXPECT_EQ(run("NormalBinding { value OVERALL } Normal { vector 0 0 1 }" + face +
                "Normal { vector 0 1 0 } Material { } USE F")
                .result.status,
            0);
  EXPECT_EQ(run("DEF T TextureCoordinate2 { point 0 0 } Texture2 { } USE T").result.err,
            "error: 3-3 TextureCoordinate2: DEF and USE statements are using different "
            "Texture2-Nodes" +
                sorry);
}

TEST(Shapes, SayThatTheirFacesAreConvexWhereNothingElseDoes) {
  const std::string face = "Coordinate3 { " + points + " } IndexedFaceSet { coordIndex [ 0,1,2 ] }";
  const std::string written = "} IndexedFaceSet { coordIndex [ 0,1,2,-1 ] } } ";
  EXPECT_TRUE(run("ShapeHints { creaseAngle 0.5 }" + face).text.ends_with(" ] " + written));
  EXPECT_TRUE(run("ShapeHints { faceType 5 }" + face).text.ends_with(" ] " + written));
  const std::string text =
      run("ShapeHints { shapeType SOLID faceType UNKNOWN_FACE_TYPE }" + face).text;
  EXPECT_TRUE(text.ends_with("ShapeHints { shapeType SOLID faceType CONVEX " + written + "} "))
      << text;
}

TEST(Shapes, OfOneMaterialNeedNoIndices) {
  const std::string face = "MaterialBinding { value PER_FACE_INDEXED } Coordinate3 { " + points +
                           " } IndexedFaceSet { coordIndex [ 0,1,2 ] materialIndex [ 1 ] }";
  const std::string one = run("Material { diffuseColor [ 1 0 0, 1 0 0 ] }" + face).text;
  EXPECT_TRUE(
      one.ends_with("Separator { MaterialBinding { value OVERALL } IndexedFaceSet { "
                    "coordIndex [ 0,1,2,-1 ] } } } "))
      << one;
  const std::string two = run("Material { diffuseColor [ 1 0 0, 0 1 0 ] }" + face).text;
  EXPECT_TRUE(two.ends_with("} IndexedFaceSet { coordIndex [ 0,1,2,-1 ] materialIndex [ 1 ] } } "))
      << two;
}

TEST(Shapes, WithoutDataAreWrittenEmpty) {
  const Joined empty =
      run("Coordinate3 { point [ ] } Normal { vector [ ] } TextureCoordinate2 { point [ ] }\n"
          "IndexedFaceSet { coordIndex [ ] }");
  EXPECT_EQ(empty.result.status, 0);
  EXPECT_EQ(empty.result.err,
            "warning: 3-3 Coordinate3: no points\n"
            "warning: 3-3 Normal: no vectors\n"
            "warning: 3-3 TextureCoordinate2: no points\n"
            "warning: 4-4 IndexedFaceSet: empty node\n");
  EXPECT_TRUE(empty.text.ends_with("IndexedFaceSet { coordIndex [ ] } } ")) << empty.text;
}

const std::string lines = R"(
  Material { diffuseColor [ 1 0 0, 0 1 0, 0 0 1 ] }
  MaterialBinding { value PER_PART }
  Coordinate3 { point [ 0 0 0, 1 0 0, 2 0 0, 3 1 0, 3 2 5 ] }
  DEF wires IndexedLineSet { coordIndex [ 0,1,2,-1, 2,1,-1, 3,4,3 ] }
)";

TEST(Lines, BecomeSegmentsWithTheirMaterials) {
  // Materials are counted by segment; one that is there already is left out, in either direction.
  const Joined plain = run(lines, {"-n", "-v", "line"});
  EXPECT_NE(plain.result.out.find("line: 7-7 IndexedLineSet: list=5 set=3\n"), std::string::npos)
      << plain.result.out;
  EXPECT_NE(plain.text.find("DEF wires Separator { MaterialBinding { value PER_PART_INDEXED } "
                            "IndexedLineSet { coordIndex [ 0,1,-1,1,2,-1,3,4,-1 ] materialIndex [ "
                            "0,1,0 ] } }"),
            std::string::npos)
      << plain.text;
}

TEST(Lines, GetLevelsOfTheirOwn) {
  const Joined levels = run(lines, {});
  EXPECT_NE(levels.result.out.find("7-7 IndexedLineSet: lod - 1 2 "), std::string::npos)
      << levels.result.out;
  EXPECT_NE(levels.text.find("LOD { range ["), std::string::npos);
  // Where no segment is left the level is an empty line set.
  EXPECT_NE(levels.text.find("IndexedLineSet { coordIndex [ ] } } }"), std::string::npos)
      << levels.text;
  EXPECT_EQ(run(lines, {"-x", "0"}).text, run(lines, {"-n"}).text);
}

}  // namespace
}  // namespace varimesh
