// Vectors, matrices, boxes, transformations, and the numbering of records.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "data/material.h"
#include "data/normal.h"
#include "geometry_run.h"
#include "meshes.h"
#include "scene/state.h"
#include "scene/transformnodes.h"

namespace varimesh {
namespace {

constexpr float kLargest = std::numeric_limits<float>::max();

TEST(Vec, KeepsItsPrecision) {
  EXPECT_EQ(Vec(3, 4, 0).getLength(), 5);
  EXPECT_EQ(Vec(3e30F, 4e30F, 0).getLength(), 5e30F);  // the squares exceed single precision
  EXPECT_EQ(Vec(3e-30F, 4e-30F, 0).getLength(), 5e-30F);
  EXPECT_EQ(dot(Vec(1e30F, 1, 0), Vec(1e30F, 1, 0)), double{1e30F} * 1e30F + 1);
  EXPECT_EQ(Vec(0, -0.0F, 0).isNullVector(), 1);
  EXPECT_EQ(Vec(0, 0, std::numeric_limits<float>::denorm_min()).isNullVector(), 0);
  EXPECT_EQ(Vec(0, std::nanf(""), 0).isNullVector(), 0);
}

TEST(Bounds, BecomeACube) {
  Bounds box(0, 0, 0, 4, 2, 2);
  box.makeCubic();
  EXPECT_EQ(box.minX, 0);
  EXPECT_EQ(box.maxX, 4);
  EXPECT_EQ(box.minY, -1);
  EXPECT_EQ(box.maxZ, 3);
  EXPECT_EQ(box.getMaxElongation(), 4);

  // Never smaller, whatever is lost in rounding, and never beyond the numbers that there are.
  meshes::Random random(1);
  for (int i = 0; i < 10000; ++i) {
    Bounds grown(1, 1, 1, -1, -1, -1);  // inverted: takes its first point on both sides
    for (int k = 0; k < 2; ++k) {
      const double scale = std::ldexp(1, meshes::pick(random, 250) - 125);
      const auto x = static_cast<float>(meshes::uniform(random, -8, 8) * scale);
      grown.enlargeIfOutside(x, i % 3 == 0 ? kLargest : 1 / (x + 1), i % 2 == 0 ? x : -kLargest);
    }
    const Bounds old = grown;
    grown.makeCubic();
    EXPECT_TRUE(grown.minX <= old.minX && grown.minY <= old.minY && grown.minZ <= old.minZ);
    EXPECT_TRUE(grown.maxX >= old.maxX && grown.maxY >= old.maxY && grown.maxZ >= old.maxZ);
    EXPECT_TRUE(std::isfinite(grown.maxX - 1) && std::isfinite(grown.getMaxElongation()));
    EXPECT_TRUE(std::isfinite(grown.getDiagonal()));
  }
  EXPECT_EQ(middle(kLargest, kLargest), kLargest);
}

TEST(Output, WritesOnlyNumbersThatAReaderTakes) {
  const auto print = [](float number) {
    return catchOutput([&](Output& out) { printFloat(out, double{number}); });
  };
  const std::string largest = "340282346638528859811704183484516925440";
  EXPECT_EQ(print(std::numeric_limits<float>::quiet_NaN()), "0");
  EXPECT_EQ(print(std::numeric_limits<float>::infinity()), largest);
  EXPECT_EQ(print(-std::numeric_limits<float>::infinity()), "-" + largest);
  // Texts longer than the buffer.
  const std::string text(3000000, 'x');
  EXPECT_TRUE(catchOutput([&](Output& out) {
                out.put('(');
                out.write(text);
                out.put(')');
              }) == "(" + text + ")");
}

TEST(Output, FormatsNumbersAsPrintfDoes) {
  meshes::Random random(11);
  for (int i = 0; i < 40000; ++i) {
    // Numbers of all sizes, and numbers that lie in the middle between two texts.
    float number = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    if (i % 4 == 1) number = std::ldexp(static_cast<float>(meshes::pick(random, 1 << 24)), -7);
    if (i % 4 == 2) number = static_cast<float>(meshes::uniform(random, -1000, 1000));
    if (i % 4 == 3) number = static_cast<float>(meshes::pick(random, 100000)) / -100;
    if (!std::isfinite(number)) continue;
    // The number itself, and one in double precision just beside it.
    for (const double written : {double{number}, std::nextafter(double{number}, 1.0)}) {
      std::array<char, 64> text;
      std::snprintf(text.data(), text.size(), "%.6f", written);
      std::string expected = text.data();
      expected.resize(expected.find_last_not_of('0') + 1);
      if (expected.back() == '.') expected.pop_back();
      ASSERT_EQ(catchOutput([&](Output& out) { printFloat(out, written); }), expected);
    }

    const int integer = static_cast<int>(random()) >> meshes::pick(random, 32);
    ASSERT_EQ(catchOutput([&](Output& out) { out.writeInt(integer); }), std::to_string(integer));
  }
}

TEST(Output, IndentsToAnyColumn) {
  const int usual = global_tab;
  for (const int tab : {0, 1, 8}) {
    global_tab = tab;
    for (const int column : {-1, 0, 7, 16, 17, 100, 2000}) {
      const auto size = static_cast<std::size_t>(std::max(column, 0));
      const std::size_t tabs = tab > 0 ? size / static_cast<std::size_t>(tab) : 0;
      const std::size_t blanks = tab > 0 ? size % static_cast<std::size_t>(tab) : size;
      EXPECT_EQ(catchOutput([&](Output& out) { printIndent(out, column); }),
                std::string(tabs, '\t') + std::string(blanks, ' '));
    }
  }
  global_tab = usual;
}

// ---- Transformations, against plain products in double precision

using Rows = std::array<std::array<double, 4>, 4>;

Rows multiply(const Rows& a, const Rows& b) {
  Rows product{};
  for (std::size_t i = 0; i < 4; ++i) {
    for (std::size_t j = 0; j < 4; ++j) {
      for (std::size_t k = 0; k < 4; ++k) product[i][j] += a[i][k] * b[k][j];
    }
  }
  return product;
}

Rows translation(const Vec& v) {
  return {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {v.x, v.y, v.z, 1}}};
}

// Turns row vectors about an axis: each row is where a unit vector comes to lie.
Rows rotation(Vec axis, double angle) {
  const double size = std::sqrt(dot(axis, axis));
  const std::array<double, 3> a = {axis.x / size, axis.y / size, axis.z / size};
  Rows rows{};
  rows[3][3] = 1;
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      const std::size_t k = 3 - i - j;
      const double sign = (i + 1) % 3 == j ? 1 : -1;
      rows[i][j] = a[i] * a[j] * (1 - std::cos(angle)) +
                   (i == j ? std::cos(angle) : sign * a[k % 3] * std::sin(angle));
    }
  }
  return rows;
}

TEST(Transform, IsTheProductOfItsParts) {
  const Vec center(1, 2, 3);
  const Vec move(-4, 0.5F, 7);
  const Vec axis(1, 2, -2);
  const Vec scaleAxis(0, 3, 4);
  const Vec scale(2, 0.5F, -3);
  State state;
  state.transform(Matrix({0, 1, 0, 0, -2, 0, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1}));
  TransformNode node(NODE_Transform);
  const auto add = [&](FieldId field, const Vec& v) {
    node.fields.emplace_back(field, std::make_unique<FVec3f>(std::vector<Vec>{v}));
  };
  // Their order in the file does not matter.
  add(FIELD_center, center);
  add(FIELD_scaleFactor, scale);
  node.fields.emplace_back(FIELD_scaleOrientation,
                           std::make_unique<FRotation>(Rotation{scaleAxis, -1.25F}));
  node.fields.emplace_back(FIELD_rotation, std::make_unique<FRotation>(Rotation{axis, 0.75F}));
  add(FIELD_translation, move);
  node.setupDepends(state);

  const Rows before = {{{0, 1, 0, 0}, {-2, 0, 0, 0}, {0, 0, 1, 0}, {5, 6, 7, 1}}};
  const Rows scaling = {{{scale.x, 0, 0, 0}, {0, scale.y, 0, 0}, {0, 0, scale.z, 0}, {0, 0, 0, 1}}};
  Rows expected = translation(Vec() - center);
  for (const Rows& next : {rotation(scaleAxis, 1.25), scaling, rotation(scaleAxis, -1.25),
                           rotation(axis, 0.75), translation(center), translation(move), before}) {
    expected = multiply(expected, next);
  }
  for (int i = 0; i < 16; ++i) {
    EXPECT_NEAR(state.matrix.at(i / 4, i % 4),
                expected[static_cast<std::size_t>(i / 4)][static_cast<std::size_t>(i % 4)], 1e-4)
        << i;
  }
}

TEST(State, MaxScaleIgnoresWhereThingsAre) {
  State state;
  EXPECT_EQ(state.getMaxScale(), 1);
  state.matrix = Matrix({2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 100, 200, 300, 1});
  EXPECT_NEAR(state.getMaxScale(), std::sqrt(2.0), 1e-6);
  state.matrix = Matrix({-3, 0, 0, 0, 0, -3, 0, 0, 0, 0, -3, 0, 0, 0, 0, 1});
  EXPECT_NEAR(state.getMaxScale(), 3, 1e-6);
  // Flattened onto an axis so that one diagonal keeps its length: that one counts, whichever it is.
  for (const Vec& d : {Vec(1, 1, 1), Vec(1, -1, 1), Vec(1, 1, -1), Vec(-1, 1, 1)}) {
    state.matrix = Matrix({d.x, 0, 0, 0, d.y, 0, 0, 0, d.z, 0, 0, 0, 0, 0, 0, 1});
    EXPECT_NEAR(state.getMaxScale(), std::sqrt(3.0), 1e-6);
    state.matrix = Matrix({0, 0, d.x, 0, 0, 0, d.y, 0, 0, 0, d.z, 0, 0, 0, 0, 1});
    EXPECT_NEAR(state.getMaxScale(), std::sqrt(3.0), 1e-6);
  }
}

// ---- Records

std::string printed(NormalSet& set, const std::string& letters, int uncompressed) {
  for (const char c : letters) set.insert(Normal(static_cast<float>(c - 'A'), 0, 0));
  set.raiseUncompressed(uncompressed);
  return catchOutput([&](Output& out) { set.print(out, 0); });
}

TEST(RecordSet, NumbersFirstOccurrences) {
  NormalSet set;
  EXPECT_EQ(printed(set, "ABAC", 0), "vector [ 0 0 0,1 0 0,2 0 0 ]\n");
  EXPECT_EQ(set.count, 3);
  EXPECT_EQ(set.getWrittenIndex(2), 0);
  EXPECT_EQ(set.getWrittenIndex(3), 2);

  // The first three keep their places; the last place of a repeated one is its number.
  NormalSet kept;
  EXPECT_EQ(printed(kept, "ABAC", 3), "vector [ 0 0 0,1 0 0,0 0 0,2 0 0 ]\n");
  EXPECT_EQ(kept.count, 4);
  EXPECT_EQ(kept.getWrittenIndex(0), 2);

  NormalSet all;
  EXPECT_EQ(printed(all, "AAA", 99), "vector [ 0 0 0,0 0 0,0 0 0 ]\n");
  EXPECT_EQ(all.uncompressed, 3);
  NormalSet one;
  EXPECT_EQ(printed(one, "AAA", 1), "vector [ 0 0 0 ]\n");
  NormalSet none;
  EXPECT_EQ(printed(none, "", 5), "");
  EXPECT_EQ(none.getMaxIndex(), -1);
}

// Records that differ in one number only meet in the hash table; they must not be taken for equal.
TEST(RecordSet, TellsAllRecordsApart) {
  NormalSet normals;
  TextureCoordSet textureCoords;
  MaterialSet materials;
  constexpr int n = 1000;
  for (int i = 1; i <= n; ++i) {
    const auto x = static_cast<float>(i);
    for (const Vec& v : {Vec(x, 0, 0), Vec(0, x, 0), Vec(0, 0, x)}) {
      normals.insert(Normal(v.x, v.y, v.z));
      Material material;
      material.specularColor = RGB(v.x, v.y, v.z);
      materials.insert(material);
    }
    textureCoords.insert(TextureCoord(x, 0));
    textureCoords.insert(TextureCoord(0, x));
    Material material;
    material.transparency = x;
    materials.insert(material);
  }
  EXPECT_EQ(normals.count, 3 * n);
  EXPECT_EQ(textureCoords.count, 2 * n);
  EXPECT_EQ(materials.count, 4 * n);
}

// Materials as letters (their red) with digits (their shininess in tenths): both lists as written.
std::string printMaterials(MaterialSet& set, const std::string& text, int uncompressed) {
  set.mask = 0b010010;
  for (std::size_t i = 0; i < text.size(); i += 2) {
    Material material;
    material.diffuseColor = RGB(static_cast<float>(text[i] - 'A'), 0, 0);
    material.shininess = static_cast<float>(text[i + 1] - '0') / 10;
    set.insert(material);
  }
  set.raiseUncompressed(uncompressed);
  return catchOutput([&](Output& out) { set.print(out, 0); });
}

std::string printMaterials(const std::string& text, int uncompressed = 0) {
  MaterialSet set;
  return printMaterials(set, text, uncompressed);
}

TEST(MaterialSet, WritesNoRepeatsAtTheEnd) {
  EXPECT_EQ(printMaterials("A1B2C2D2"),
            "diffuseColor [ 0 0 0,1 0 0,2 0 0,3 0 0 ]\nshininess [ 0.1,0.2 ]\n");
  EXPECT_EQ(printMaterials("A1B1C1", 2),
            "diffuseColor [ 0 0 0,1 0 0,2 0 0 ]\nshininess [ 0.1,0.1 ]\n");
  EXPECT_EQ(printMaterials("A1A2"), "diffuseColor [ 0 0 0 ]\nshininess [ 0.1,0.2 ]\n");
  EXPECT_EQ(printMaterials("A1A1A1"), "diffuseColor [ 0 0 0 ]\nshininess [ 0.1 ]\n");
  // The value that goes on must be the one written last: the second A is not written, so the list
  // ends with C, or .2 would go on.
  EXPECT_EQ(printMaterials("A1B2A1C1"),
            "diffuseColor [ 0 0 0,1 0 0,2 0 0 ]\nshininess [ 0.1,0.2,0.1 ]\n");
  EXPECT_EQ(printMaterials("A1B2A1A1"), "diffuseColor [ 0 0 0,1 0 0 ]\nshininess [ 0.1,0.2 ]\n");
}

// However a list ends, each material reads back with its own value.
TEST(MaterialSet, KeepsAllValuesReadable) {
  meshes::Random random(5);
  for (int round = 0; round < 5000; ++round) {
    std::string materials;
    for (int n = 1 + meshes::pick(random, 7); n > 0; --n) {
      const int color = meshes::pick(random, 4);
      materials += static_cast<char>('A' + color);
      materials += (round >> color & 1) != 0 ? '3' : '2';
    }
    MaterialSet set;
    const std::string text = printMaterials(set, materials, meshes::pick(random, 4) - 1);
    std::string written;
    for (const char c : text.substr(text.find("shininess"))) {
      if (c == '3' || c == '2') written += c;
    }
    for (std::size_t i = 0; i < materials.size() / 2; ++i) {
      const auto index = static_cast<std::size_t>(set.getWrittenIndex(static_cast<int>(i)));
      EXPECT_EQ(written[std::min(index, written.size() - 1)], materials[2 * i + 1]) << text;
    }
  }
}

}  // namespace
}  // namespace varimesh
