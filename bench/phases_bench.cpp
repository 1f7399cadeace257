// How long each phase of a run takes, and how much memory the run has needed up to there.
//
// The levels of a shape are made and written here as the shape itself does it, but with a clock
// between the steps. A phase is measured in a run of its own that ends with it. Times are
// processor times.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "driver/scene.h"
#include "process.h"
#include "reader/parser.h"
#include "reader/scanner.h"
#include "scenes.h"
#include "shapes/shapenode.h"

namespace varimesh {
namespace {

enum Phase { parsing, dependencies, attributes, levelZero, levels, writing, wholeRun };

struct PhaseInfo {
  Phase phase;
  const char* name;
};
constexpr PhaseInfo phases[] = {{parsing, "parse"},         {dependencies, "dependencies"},
                                {attributes, "attributes"}, {levelZero, "level_0"},
                                {levels, "levels"},         {writing, "write_levels"},
                                {wholeRun, "whole_run"}};

// The steps of ShapeNode::print, one by one. They are the business of shapes alone; here they are
// reached through a class that is derived from it but never made.
struct ShapeSteps : ShapeNode {
  static std::unique_ptr<ShapeSet> generateLevelZero(ShapeNode& shape) {
    return (shape.*&ShapeSteps::generateShapeSet)();
  }
  static int getShapeType(const ShapeNode& shape) {
    return (shape.*&ShapeSteps::getKind)().shapeType;
  }
  static void print(ShapeNode& shape, Output& out, const ShapeSet& set) {
    (shape.*&ShapeSteps::printLevel)(out, 0, set);
  }
};

struct Measurement {
  double time = 0;       // of the phase
  double firstTime = 0;  // of the first level, when levels are measured
  double bytes = 0;      // read or written by the phase
  int levelCount = 0;
};

// A run that stops after one phase, with the time that this phase took.
class PhaseRun {
 public:
  PhaseRun(std::FILE* input, Phase phase)
      : input_(input),
        phase_(phase),
        file_(std::tmpfile()),
        otherFile_(std::tmpfile()),
        out_(file_),
        otherOut_(otherFile_) {
    if (file_ == nullptr || otherFile_ == nullptr) std::abort();
    std::rewind(input);
    Node::identifiers.clear();
  }
  ~PhaseRun() {
    out_.flush();
    otherOut_.flush();
    std::fclose(file_);
    std::fclose(otherFile_);
  }

  Measurement run() {
    const double start = getProcessorTime();
    measure(parsing, [&] {
      if (!lex_setInput(input_) || yyparse() != 0) std::abort();
      lex_release();
    });
    if (phase_ == parsing) {
      result_.bytes = static_cast<double>(std::ftell(input_));
      yacc_tree.clear();
      return result_;
    }
    std::vector<Node*> nodes;
    for (const auto& node : yacc_tree) nodes.push_back(node.get());
    Scene scene(std::move(yacc_tree));
    yacc_tree.clear();
    measure(dependencies, [&] { scene.resolveDependencies(); });
    if (phase_ == dependencies) return result_;

    if (phase_ == wholeRun) {
      scene.print(out_);
      out_.flush();
      result_.time = getProcessorTime() - start;
      result_.bytes = static_cast<double>(std::ftell(file_));
      return result_;
    }
    for (Node* node : nodes) visit(*node);
    measure(phase_, [&] { out_.flush(); });
    result_.bytes = static_cast<double>(std::ftell(file_));
    return result_;
  }

 private:
  template <class Step>
  void measure(Phase phase, Step step) {
    if (phase != phase_) return step();
    const double start = getProcessorTime();
    step();
    result_.time += getProcessorTime() - start;
  }
  // What the measured phase writes goes into a file of its own, so that its bytes can be counted.
  [[nodiscard]] Output& getOutput(Phase phase) { return phase == phase_ ? out_ : otherOut_; }

  // NOLINTNEXTLINE(misc-no-recursion): the scenes measured are not nested deeply
  void visit(Node& node) {
    if (GroupNode* group = node.asGroup()) {
      for (const auto& child : group->children) visit(*child);
    } else if (auto* shape = dynamic_cast<ShapeNode*>(&node)) {
      if (phase_ >= levelZero) makeAndWrite(*shape);
      shape->state.coordNode->removeUser();
      shape->state.materialNode->removeUser();
      shape->state.normalNode->removeUser();
      shape->state.textureCoordNode->removeUser();
    } else {
      measure(attributes, [&] { node.print(getOutput(attributes), 0); });
    }
  }

  void makeAndWrite(ShapeNode& shape) {
    std::vector<std::unique_ptr<ShapeSet>> sets;
    measure(levelZero, [&] { sets.push_back(ShapeSteps::generateLevelZero(shape)); });
    if (phase_ == levelZero) return;

    OctreeCoordSet& coords = shape.getCoordSet();
    coords.resetLODs();
    coords.setShapeType(ShapeSteps::getShapeType(shape));
    while (coords.getCountUsed() > 1 && sets.back()->setCount > 0) {
      const double before = result_.time;
      measure(levels, [&] {
        coords.generateNextLOD(*sets.back());
        sets.push_back(sets.back()->generateNextLOD());
      });
      ++result_.levelCount;
      if (sets.size() == 2) result_.firstTime += result_.time - before;
    }
    if (phase_ == levels) return;
    measure(writing, [&] {
      for (const auto& set : sets) ShapeSteps::print(shape, getOutput(writing), *set);
    });
  }

  std::FILE* input_;
  Phase phase_;
  std::FILE* file_;
  std::FILE* otherFile_;
  Output out_;
  Output otherOut_;
  Measurement result_;
};

// Scenes of one size, told by their triangles whatever their size counts.
struct Workload {
  const char* kind;
  int trianglesPerUnit;
};
constexpr Workload workloads[] = {{"sphere", 1},     {"terrain", 1}, {"body", 1},
                                  {"attributes", 1}, {"shapes", 10}, {"shared", 100}};
constexpr int sizes[] = {10'000, 100'000, 1'000'000};

// The scene measured last; benchmarks of one scene follow one another.
std::FILE* openScene(const Workload& workload, int triangles) {
  static std::string presentName;
  static std::FILE* present = nullptr;
  const std::string name = workload.kind + std::to_string(triangles);
  if (name != presentName) {
    if (present != nullptr) std::fclose(present);
    present = std::tmpfile();
    if (present == nullptr ||
        !writeScene(present, workload.kind, triangles / workload.trianglesPerUnit, 1)) {
      std::fputs("error: cannot write a temporary file\n", stderr);
      std::exit(EXIT_FAILURE);
    }
    presentName = name;
  }
  return present;
}

// The least times, by scene and phase, and then by size.
std::map<std::string, std::map<int, double>> leastTimes;

void measurePhase(benchmark::State& state, const Workload& workload, int triangles,
                  const PhaseInfo& info) {
  std::FILE* const input = openScene(workload, triangles);
  double& least = leastTimes[std::string(workload.kind) + "/" + info.name]
                      .emplace(triangles, std::numeric_limits<double>::max())
                      .first->second;
  Measurement result;
  for ([[maybe_unused]] const auto iteration : state) {
    const QuietOutput quiet;
    resetPeakMemory();
    result = PhaseRun(input, info.phase).run();
    state.SetIterationTime(result.time);
    least = std::min(least, result.time);
  }
  state.SetItemsProcessed(state.iterations() * triangles);
  if (result.bytes > 0) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(result.bytes));
  }
  state.counters["peak_MB"] = static_cast<double>(getPeakMemory()) / 1e6;
  if (info.phase == levels) {
    state.counters["levels"] = result.levelCount;
    state.counters["first_level_ms"] = 1000 * result.firstTime;
  }
}

void registerBenchmarks() {
  for (const Workload& workload : workloads) {
    for (const int size : sizes) {
      for (const PhaseInfo& info : phases) {
        const std::string name =
            std::string(workload.kind) + "/" + std::to_string(size) + "/" + info.name;
        benchmark::RegisterBenchmark(name.c_str(),
                                     [&workload, size, &info](benchmark::State& state) {
                                       measurePhase(state, workload, size, info);
                                     })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond)
            ->Iterations(3);
      }
    }
  }
}

// How much longer ten times the triangles take. Times too short to compare are left out.
void printGrowth() {
  constexpr double shortest = 0.0005;
  constexpr double wanted = 12;
  std::puts("\nGrowth from 100 k to 1 M triangles (least times)");
  for (const auto& [name, times] : leastTimes) {
    const auto small = times.find(100'000);
    const auto large = times.find(1'000'000);
    if (small == times.end() || large == times.end() || small->second < shortest) continue;
    const double growth = large->second / small->second;
    std::printf("%-26s %6.2f%s\n", name.c_str(), growth, growth < wanted ? "" : "  TOO MUCH");
  }
}

}  // namespace
}  // namespace varimesh

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return EXIT_FAILURE;
  varimesh::registerBenchmarks();
  benchmark::RunSpecifiedBenchmarks();
  varimesh::printGrowth();
}
