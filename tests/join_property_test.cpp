// Joining never changes what is seen: random scenes show the same before and after.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "picture.h"
#include "reader/names.h"

namespace varimesh {
namespace {

using Random = std::mt19937;

unsigned choose(Random& random, unsigned count) { return static_cast<unsigned>(random()) % count; }
bool isChosen(Random& random, unsigned percent) { return choose(random, 100) < percent; }

std::string repeat(unsigned count, const std::string& separator, auto makeItem) {
  std::string text;
  for (unsigned i = 0; i < count; ++i) text += (i > 0 ? separator : "") + makeItem(i);
  return text;
}

// Makes up valid scenes that are full of things to join. How a group is built follows from a seed
// of its own, so that equal groups can be made, with other data, by using the seed again. Every
// polygon has points that no other has, since polygons with the same points would count as one.
class SceneMaker {
 public:
  explicit SceneMaker(unsigned seed) : data_(seed) {
    for (auto& list : pool_) list.assign(pointCount, true);
  }

  std::string make() {
    const bool isSingle = isChosen(data_, 50);
    std::string text = "#VRML V1.0 ascii\n";
    if (isSingle) text += "Separator {\n";
    State state;
    text += makeMixedBody(static_cast<unsigned>(data_()), 0, state);
    return text + (isSingle ? "}\n" : "");
  }

 private:
  static constexpr unsigned listCount = 8;  // different point lists
  static constexpr unsigned pointCount = 30;

  // What the scene so far has put in force; the ids tell nodes apart.
  struct State {
    int coords = -1;  // the point list
    unsigned materials = 1, normals = 0, textures = 0;
    int materialBinding = DEFAULT, normalBinding = DEFAULT;
    std::array<int, 5> ids{};
    friend bool operator==(const State&, const State&) = default;
  };
  struct Named {
    std::string name;
    State state;  // in force where it was defined, or set by it
    int type;
  };

  std::string makeColor() {
    return repeat(3, " ", [&](unsigned) { return choose(data_, 3) == 0 ? "1" : "0.5"; });
  }

  std::string define(const std::string& node, int type, const State& state) {
    if (!isChosen(data_, 12)) return node + "\n";
    const std::string name = "n" + std::to_string(named_.size());
    named_.push_back({name, state, type});
    return "DEF " + name + " " + node + "\n";
  }

  // A USE of a node of the type that may stand here, if there is one.
  std::string makeUse(int type, State& state) {
    for (std::size_t i = named_.size(); i-- > 0;) {
      const Named& named = named_[i];
      if (named.type != type || isChosen(data_, 30)) continue;
      switch (type) {
        case NODE_Coordinate3:
          state.coords = named.state.coords;
          state.ids[0] = named.state.ids[0];
          break;
        case NODE_Material:
          state.materials = named.state.materials;
          state.ids[1] = named.state.ids[1];
          break;
        case NODE_Normal:
          state.normals = named.state.normals;
          state.ids[2] = named.state.ids[2];
          break;
        default:
          if (!(named.state == state)) continue;
      }
      return "USE " + named.name + "\n";
    }
    return "";
  }

  std::string makeCoords(State& state) {
    if (isChosen(data_, 5)) {
      if (std::string use = makeUse(NODE_Coordinate3, state); !use.empty()) return use;
    }
    state.coords = static_cast<int>(choose(data_, listCount));
    state.ids[0] = ++lastId_;
    const std::string points = repeat(pointCount, ", ", [&](unsigned i) {
      // The last list has its first point twice.
      const unsigned number = state.coords == 0 && i == 1 ? 0 : i;
      return std::to_string(number) + " " + std::to_string(number * number) + " " +
             std::to_string(state.coords);
    });
    return define("Coordinate3 { point [ " + points + " ] }", NODE_Coordinate3, state);
  }

  std::string makeMaterials(State& state) {
    if (isChosen(data_, 8)) {
      if (std::string use = makeUse(NODE_Material, state); !use.empty()) return use;
    }
    state.materials = 1;
    state.ids[1] = ++lastId_;
    std::string fields;
    const auto addField = [&](const char* name, unsigned percent, bool isColor) {
      if (!isChosen(data_, percent)) return;
      const unsigned count = choose(data_, 4);
      state.materials = std::max(state.materials, count);
      fields += std::string(name) + " [ " +
                repeat(count, ", ",
                       [&](unsigned) {
                         return isColor ? makeColor() : "0." + std::to_string(choose(data_, 3));
                       }) +
                " ] ";
    };
    addField("diffuseColor", 80, true);
    addField("shininess", 30, false);
    addField("ambientColor", 10, true);
    addField("specularColor", 10, true);
    addField("emissiveColor", 10, true);
    addField("transparency", 20, false);
    return define("Material { " + fields + "}", NODE_Material, state);
  }

  std::string makeNormals(State& state) {
    if (isChosen(data_, 5)) {
      if (std::string use = makeUse(NODE_Normal, state); !use.empty()) return use;
    }
    state.normals = std::array<unsigned, 6>{0, 1, 2, 4, 14, pointCount}[choose(data_, 6)];
    state.ids[2] = ++lastId_;
    const unsigned first = choose(data_, 2);
    const std::string vectors = repeat(state.normals, ", ", [&](unsigned i) {
      return "0 " + std::to_string(first + i % 5) + " 1";
    });
    return define("Normal { vector [ " + vectors + " ] }", NODE_Normal, state);
  }

  std::string makeTextureCoords(State& state) {
    state.textures = choose(data_, 4);
    state.ids[3] = ++lastId_;
    const unsigned first = choose(data_, 2);
    const std::string points = repeat(
        state.textures, ", ", [&](unsigned i) { return std::to_string(first + i) + " 0.5"; });
    return "TextureCoordinate2 { point [ " + points + " ] }\n";
  }

  static std::string makeBinding(Random& plan, bool isMaterial, State& state) {
    constexpr std::array<const char*, 8> words = {
        "DEFAULT",  "OVERALL",          "PER_PART",   "PER_PART_INDEXED",
        "PER_FACE", "PER_FACE_INDEXED", "PER_VERTEX", "PER_VERTEX_INDEXED"};
    constexpr std::array<unsigned, 12> likely = {0, 1, 1, 2, 3, 4, 5, 5, 5, 6, 7, 7};
    const unsigned binding = likely[choose(plan, likely.size())];
    (isMaterial ? state.materialBinding : state.normalBinding) = static_cast<int>(binding);
    return std::string(isMaterial ? "Material" : "Normal") + "Binding { value " + words[binding] +
           " }\n";
  }

  // The points of one polygon: a number of those of a list that no polygon has yet.
  std::vector<int> takePoints(const State& state, unsigned count) {
    std::vector<int> points;
    if (state.coords < 0) return points;
    auto& free = pool_[static_cast<std::size_t>(state.coords)];
    const unsigned start = choose(data_, pointCount);
    for (unsigned i = 0; i < pointCount && points.size() < count; ++i) {
      const unsigned point = (start + i * 7) % pointCount;
      if (!free[point]) continue;
      if (state.coords == 0 && point == 0 && std::count(points.begin(), points.end(), 1) > 0) {
        continue;
      }
      free[point] = false;
      if (state.coords == 0 && point < 2) free[0] = free[1] = false;
      points.push_back(static_cast<int>(point));
    }
    if (points.size() < count) points.clear();
    // In their order on the curve they form a convex polygon, which the program leaves as it is.
    std::sort(points.begin(), points.end());
    if (isChosen(data_, 30)) std::reverse(points.begin(), points.end());
    return points;
  }

  // An index list of the shape: numbers below `limit`, one for each polygon, segment or corner.
  std::string makeIndexList(Random& plan, const char* field, int binding, bool isLine,
                            const std::vector<std::vector<int>>& polygons, unsigned limit) {
    const bool isBySegment = isLine && binding == PER_PART_INDEXED;
    const bool isClosed = isChosen(plan, 80);
    std::string text;
    for (const auto& polygon : polygons) {
      std::size_t count = 1;
      if (isBySegment) count = polygon.size() - 1;
      if (binding == PER_VERTEX_INDEXED) count = polygon.size();
      for (std::size_t i = 0; i < count; ++i) text += std::to_string(choose(data_, limit)) + ", ";
      if (isClosed && (isBySegment || binding == PER_VERTEX_INDEXED)) text += "-1, ";
    }
    if (isChosen(data_, 4)) text += "1, ";
    return std::string(field) + " [ " + text + "] ";
  }

  std::string makeShape(Random& plan, State& state) {
    const bool isLine = isChosen(plan, 20);
    const bool isListed = isChosen(plan, 50);
    const bool isTextured = isChosen(plan, 60);
    const bool isUseless = isChosen(plan, 15);
    const unsigned mostPolygons = 1 + choose(data_, 3);
    const auto count = [&](unsigned polygons, int binding) {  // at most
      if (binding == PER_VERTEX) return polygons * 4;
      return binding == PER_PART && isLine ? polygons * 3 : polygons;
    };
    const int normalBinding =
        state.normalBinding == DEFAULT ? int{PER_VERTEX_INDEXED} : state.normalBinding;
    const bool isCounted =
        normalBinding == PER_PART || normalBinding == PER_FACE || normalBinding == PER_VERTEX;
    std::vector<std::vector<int>> polygons;
    if (!isCounted || state.normals == 0 || count(mostPolygons, normalBinding) <= state.normals) {
      for (unsigned i = 0; i < mostPolygons; ++i) {
        const unsigned corners = isChosen(data_, 10) ? 2 : 3 + choose(data_, 2);
        auto polygon = takePoints(state, corners);
        if (!polygon.empty()) polygons.push_back(std::move(polygon));
      }
    }
    std::string fields = "coordIndex [ ";
    for (const auto& polygon : polygons) {
      for (const int point : polygon) fields += std::to_string(point) + ", ";
      if (&polygon != &polygons.back() || isChosen(data_, 80)) fields += "-1, ";
    }
    fields += "] ";
    const auto isNeeded = [&](int binding) {
      return binding == PER_FACE_INDEXED || (binding == PER_PART_INDEXED && !isLine) ||
             ((binding == PER_PART_INDEXED || binding == PER_VERTEX_INDEXED) && isListed);
    };
    const auto addList = [&](const char* field, int binding, unsigned limit) {
      fields += makeIndexList(plan, field, binding, isLine, polygons, limit);
    };
    const bool isSingle = state.materials == 1 && isUseless;
    if (isNeeded(state.materialBinding) ? !isSingle : isUseless && !isChosen(plan, 60)) {
      addList("materialIndex", state.materialBinding, state.materials + 2);
    }
    if (isNeeded(normalBinding) ||
        (normalBinding == PER_VERTEX_INDEXED && state.normals > 0 && state.normals < pointCount) ||
        (normalBinding == PER_PART_INDEXED && state.normals > 0 && state.normals < pointCount)) {
      addList("normalIndex", normalBinding, std::max(1U, state.normals));
    } else if (isUseless && !isChosen(plan, 60)) {
      addList("normalIndex", normalBinding, std::max(1U, state.normals));
    }
    if (isTextured) {
      addList("textureCoordIndex", PER_VERTEX_INDEXED, std::max(1U, state.textures));
    }
    const std::string type = isLine ? "IndexedLineSet" : "IndexedFaceSet";
    std::string text = define(type + " { " + fields + "}", NODE_IndexedFaceSet, state);
    if (isChosen(data_, 3)) text += makeUse(NODE_IndexedFaceSet, state);
    return text;
  }

  std::string makeOther(Random& plan, State& state) {
    switch (choose(plan, 10)) {
      case 0: return "PointSet { startIndex 2 numPoints 3 }\n";
      case 1: return "PointSet { }\n";
      case 2: return "Cone { }\n";
      case 3: return "Cube { }\n";
      case 4: return "Cylinder { }\nSphere { }\n";
      case 5:
        state.ids[4] = ++lastId_;
        return "Texture2 { filename \"" + std::to_string(choose(plan, 2)) + "\" }\n";
      case 6:
        return std::string("ShapeHints { vertexOrdering CLOCKWISE faceType ") +
               (isChosen(plan, 50) ? "UNKNOWN_FACE_TYPE }\n" : "CONVEX }\n");
      case 7: return "ShapeHints { shapeType SOLID }\n";
      case 8: return "Translation { translation 1 2 3 }\n";
      default: return "Scale { scaleFactor 2 1 1 }\n";
    }
  }

  // A group with a body; equal seeds make groups that differ in their data only.
  std::string makeGroup(unsigned seed, int depth, State& state) {
    constexpr std::array<const char*, 10> types = {
        "Separator", "Separator", "Separator",          "Separator", "Separator",
        "Group",     "Group",     "TransformSeparator", "WWWAnchor", "LOD"};
    Random plan(seed);
    const unsigned type = isChosen(plan, 3) ? 9 : choose(plan, 9);
    const bool isModel = isChosen(plan, 70);
    const auto bodySeed = static_cast<unsigned>(plan());
    const State before = state;
    std::string text = std::string(types[type]) + " {\n";
    if (type == 8) text += "name \"" + std::to_string(choose(data_, 2)) + "\"\n";
    text += isModel ? makeModelBody(bodySeed, depth, state) : makeMixedBody(bodySeed, depth, state);
    text += "}";
    if (type < 5 || type == 8) {
      state = before;
      text = define(text, NODE_Separator, state);
      if (isChosen(data_, 5)) text += makeUse(NODE_Separator, state);
      return text;
    }
    return text + "\n";
  }

  // A few equal groups, sometimes with another one between them.
  std::string makeRow(Random& plan, int depth, State& state) {
    const auto seed = static_cast<unsigned>(plan());
    return repeat(1 + choose(data_, 4), "", [&](unsigned) {
      return makeGroup(isChosen(data_, 8) ? static_cast<unsigned>(data_()) : seed, depth + 1,
                       state);
    });
  }

  // What exporters write: attributes, then shapes that use them.
  std::string makeModelBody(unsigned seed, int depth, State& state) {
    Random plan(seed);
    std::string text;
    if (isChosen(plan, 50)) text += makeBinding(plan, true, state);
    if (isChosen(plan, 60)) text += makeMaterials(state);
    if (isChosen(plan, 30)) text += makeBinding(plan, false, state);
    if (isChosen(plan, 90)) text += makeCoords(state);
    if (isChosen(plan, 40)) text += makeNormals(state);
    if (isChosen(plan, 40)) text += makeTextureCoords(state);
    if (depth < 3 && isChosen(plan, 20)) text += makeRow(plan, depth, state);
    const unsigned shapes = 1 + choose(plan, 2);
    for (unsigned i = 0; i < shapes; ++i) text += makeShape(plan, state);
    if (isChosen(plan, 15)) {
      text += makeMaterials(state);
      text += makeShape(plan, state);
    }
    if (isChosen(plan, 5)) text += makeOther(plan, state);
    return text;
  }

  // Anything in any order, but never two data nodes of one type next to each other.
  std::string makeMixedBody(unsigned seed, int depth, State& state) {
    Random plan(seed);
    std::string text;
    unsigned last = 0;
    const unsigned count = choose(plan, depth == 0 ? 9 : 6);
    for (unsigned i = 0; i < count; ++i) {
      const unsigned kind = choose(plan, 14);
      if (kind == last && kind <= 3) continue;
      last = kind;
      switch (kind) {
        case 0: text += makeCoords(state); break;
        case 1: text += makeMaterials(state); break;
        case 2: text += makeNormals(state); break;
        case 3: text += makeTextureCoords(state); break;
        case 4: text += makeBinding(plan, true, state); break;
        case 5: text += makeBinding(plan, false, state); break;
        case 6: text += makeOther(plan, state); break;
        case 7:
        case 8: text += makeShape(plan, state); break;
        default:
          if (depth < 4) text += makeRow(plan, depth, state);
      }
    }
    return text;
  }

  Random data_;
  std::array<std::vector<bool>, listCount> pool_;
  std::vector<Named> named_;
  int lastId_ = 0;
};

enum Outcome : int { same = 40, sameJoined, changedByWriting, changedByJoining };

// Compares in a process of its own, since a fault in a scene ends the process.
int compareInChild(unsigned seed, std::FILE* errors) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    dup2(fileno(errors), STDERR_FILENO);
    const std::string scene = SceneMaker(seed).make();
    const auto before = drawScene(scene);
    if (drawScene(convertScene(scene, false).text) != before) _exit(changedByWriting);
    const Conversion joined = convertScene(scene, true);
    if (drawScene(joined.text) != before) _exit(changedByJoining);
    _exit(joined.removed > 0 ? sameJoined : same);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Whether the run ended because line sets without material indices met different materials: the
// one way in which joining may refuse a scene.
bool isRefused(int outcome, const std::string& errors) {
  return outcome == EXIT_FAILURE &&
         errors.find("join mode is material - second materiaIndex == NULL\n") != std::string::npos;
}

TEST(JoinProperty, ScenesShowTheSameBeforeAndAfter) {
  constexpr unsigned scenes = 400;
  unsigned joinedScenes = 0;
  for (unsigned seed = 0; seed < scenes; ++seed) {
    std::FILE* errors = std::tmpfile();
    const int outcome = compareInChild(seed, errors);
    std::string text(400000, '\0');
    std::rewind(errors);
    text.resize(std::fread(text.data(), 1, text.size(), errors));
    std::fclose(errors);
    if (outcome == sameJoined) ++joinedScenes;
    EXPECT_TRUE(outcome == same || outcome == sameJoined || isRefused(outcome, text))
        << "seed " << seed << ", outcome " << outcome;
  }
  EXPECT_GT(joinedScenes, scenes / 4);
}

}  // namespace
}  // namespace varimesh
