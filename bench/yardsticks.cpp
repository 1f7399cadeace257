// Yardsticks for the speed of the program. Each call takes one measurement, in a process of its
// own, and prints one line of the form "name value name value ..."; times are processor seconds.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "process.h"
#include "reader/parser.h"
#include "reader/scanner.h"
#include "scene/groupnodes.h"
#include "yardsticks.h"

namespace varimesh {
namespace {

[[noreturn]] void fail(const std::string& what) {
  std::fprintf(stderr, "error: %s\n", what.c_str());
  std::exit(EXIT_FAILURE);
}

// A file read in one go; a NUL stands behind its text.
struct Text {
  std::unique_ptr<char[]> data;
  std::size_t size = 0;
};

Text readFile(const char* name) {
  const int file = open(name, O_RDONLY);
  if (file < 0) fail(std::string("cannot open ") + name);
  const auto size = static_cast<std::size_t>(lseek(file, 0, SEEK_END));
  lseek(file, 0, SEEK_SET);
  Text text{std::make_unique_for_overwrite<char[]>(size + 1), 0};
  while (text.size < size) {
    const ssize_t got = read(file, text.data.get() + text.size, size - text.size);
    if (got <= 0) fail(std::string("cannot read ") + name);
    text.size += static_cast<std::size_t>(got);
  }
  text.data[size] = '\0';
  close(file);
  return text;
}

// ---------------------------------------------------------------------------------------------
// Bare conversion: what any program must do that reads the numbers of one text and writes those of
// another.

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

// Converts every number in the text; takeInt and takeFloat get them. Words, strings and comments
// are passed over.
template <class TakeInt, class TakeFloat>
void convertNumbers(const Text& text, TakeInt takeInt, TakeFloat takeFloat) {
  const char* p = text.data.get();
  const char* const end = p + text.size;
  while (p < end) {
    const char c = *p;
    if (isDigit(c) || c == '-' || c == '.') {
      const char* digits = p + (c == '-' ? 1 : 0);
      while (isDigit(*digits)) ++digits;
      const char* next = p;
      if (*digits == '.' || *digits == 'e' || *digits == 'E') {
        float number = 0;
        next = std::from_chars(p, end, number).ptr;
        takeFloat(number);
      } else if (*digits == 'x') {
        std::uint32_t number = 0;
        next = std::from_chars(digits + 1, end, number, 16).ptr;
        takeInt(static_cast<int>(number));
      } else {
        int number = 0;
        next = std::from_chars(p, end, number).ptr;
        takeInt(number);
      }
      p = next > p ? next : p + 1;
    } else if (c == '#') {
      while (p < end && *p != '\n') ++p;
    } else if (c == '"') {
      ++p;
      while (p < end && *p != '"') p += *p == '\\' ? 2 : 1;
      ++p;
    } else if (isLetter(c)) {
      while (isLetter(*p) || isDigit(*p)) ++p;
    } else {
      ++p;
    }
  }
}

// The numbers of a written file, in their order: stretches of integers and of floats.
struct Numbers {
  struct Stretch {
    std::size_t ints, floats;  // first so many integers, then so many floats
  };
  std::vector<Stretch> stretches{{0, 0}};
  std::vector<int> ints;
  std::vector<float> floats;
};

Numbers collectNumbers(const Text& text) {
  Numbers numbers;
  convertNumbers(
      text,
      [&](int number) {
        if (numbers.stretches.back().floats > 0) numbers.stretches.push_back({0, 0});
        ++numbers.stretches.back().ints;
        numbers.ints.push_back(number);
      },
      [&](float number) {
        ++numbers.stretches.back().floats;
        numbers.floats.push_back(number);
      });
  return numbers;
}

// Writes through a buffer of its own.
class Writer {
 public:
  explicit Writer(const char* name) : file_(open(name, O_WRONLY | O_CREAT | O_TRUNC, 0666)) {
    if (file_ < 0) fail(std::string("cannot create ") + name);
  }
  ~Writer() {
    flush();
    close(file_);
  }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  template <class Number>
  void put(Number number) {
    if (used_ + 64 > capacity) flush();
    char* const start = buffer_.get() + used_;
    char* const end = std::to_chars(start, start + 63, number).ptr;
    *end = ',';
    used_ += static_cast<std::size_t>(end + 1 - start);
  }

 private:
  static constexpr std::size_t capacity = std::size_t{1} << 18;

  void flush() {
    if (write(file_, buffer_.get(), used_) != static_cast<ssize_t>(used_)) fail("cannot write");
    used_ = 0;
  }

  int file_;
  std::unique_ptr<char[]> buffer_{new char[capacity]};
  std::size_t used_ = 0;
};

void measureConversion(const char* input, const char* output, const char* scratch) {
  const Numbers numbers = collectNumbers(readFile(output));

  const double start = getProcessorTime();
  std::int64_t intSum = 0;
  double floatSum = 0;
  std::size_t count = 0;
  {
    const Text text = readFile(input);
    convertNumbers(
        text, [&](int number) { intSum += number, ++count; },
        [&](float number) { floatSum += double{number}, ++count; });
  }
  const double middle = getProcessorTime();
  {
    Writer writer(scratch);
    auto nextInt = numbers.ints.begin();
    auto nextFloat = numbers.floats.begin();
    for (const Numbers::Stretch& stretch : numbers.stretches) {
      for (std::size_t i = 0; i < stretch.ints; ++i) writer.put(*nextInt++);
      for (std::size_t i = 0; i < stretch.floats; ++i) writer.put(*nextFloat++);
    }
  }
  const double end = getProcessorTime();
  std::printf("time %.6f read %.6f write %.6f numbers_read %zu ints_written %zu floats_written %zu",
              end - start, middle - start, end - middle, count, numbers.ints.size(),
              numbers.floats.size());
  std::printf(" checksum %.9g\n", static_cast<double>(intSum) + floatSum);
}

// ---------------------------------------------------------------------------------------------
// Our own parser

double parseFile(const char* name) {
  std::FILE* const file = std::fopen(name, "r");
  if (file == nullptr) fail(std::string("cannot open ") + name);
  const double start = getProcessorTime();
  if (!lex_setInput(file) || yyparse() != 0) fail("cannot parse the scene");
  lex_release();
  const double time = getProcessorTime() - start;
  std::fclose(file);
  return time;
}

// ---------------------------------------------------------------------------------------------
// Chains of levels

// Collects the face sets of a scene as meshes. Polygons become fans of triangles.
class MeshCollector {
 public:
  std::vector<YardstickMesh> meshes;

  void visit(const NodeList& nodes) {
    for (const auto& node : nodes) {
      if (node->type == NODE_Coordinate3) points_ = node->getValue<FVec3f>(FIELD_point);
      if (node->type == NODE_IndexedFaceSet) add(node->getValue<FLong>(FIELD_coordIndex));
      if (GroupNode* group = node->asGroup()) visit(group->children);
    }
  }

 private:
  void add(const FLong* list) {
    if (list == nullptr || points_ == nullptr) return;
    YardstickMesh& mesh = meshes.emplace_back();
    marks_.resize(std::max(marks_.size(), points_->values.size()));
    const auto getNumber = [&](int position) {
      Mark& mark = marks_.at(static_cast<std::size_t>(position));
      if (mark.shape != meshes.size()) {
        mark = {meshes.size(), static_cast<unsigned>(mesh.points.size())};
        const Vec& p = points_->values.at(static_cast<std::size_t>(position));
        mesh.points.push_back({p.x, p.y, p.z});
      }
      return mark.number;
    };
    std::vector<unsigned> polygon;
    for (const int position : list->values) {
      if (position >= 0) {
        polygon.push_back(getNumber(position));
        continue;
      }
      for (std::size_t i = 2; i < polygon.size(); ++i) {
        mesh.corners.insert(mesh.corners.end(), {polygon[0], polygon[i - 1], polygon[i]});
      }
      polygon.clear();
    }
    if (mesh.corners.empty()) meshes.pop_back();
  }

  struct Mark {
    std::size_t shape = 0;  // the number of the shape, from 1, that used the point last
    unsigned number = 0;
  };
  const FVec3f* points_ = nullptr;
  std::vector<Mark> marks_;
};

[[maybe_unused]] void printChain(const char* input,
                                 ChainResult (*measure)(const std::vector<YardstickMesh>&)) {
  parseFile(input);
  MeshCollector collector;
  collector.visit(yacc_tree);
  yacc_tree.clear();
  const ChainResult result = measure(collector.meshes);
  std::printf("time %.6f levels %zu meshes %zu\n", result.time, result.levels,
              collector.meshes.size());
}

int usage() {
  std::fputs(
      "usage: varimesh_yardsticks list                               the yardsticks there are\n"
      "       varimesh_yardsticks conversion INPUT OUTPUT SCRATCH    bare conversion\n"
      "       varimesh_yardsticks parse INPUT                        our own parser\n"
      "       varimesh_yardsticks scene-graph INPUT                  reading with Coin\n"
      "       varimesh_yardsticks edges INPUT                        levels with meshoptimizer\n"
      "       varimesh_yardsticks clusters INPUT                     its clustering variant\n",
      stderr);
  return EXIT_FAILURE;
}

int runYardstick(int argc, char** argv) {
  const std::string_view what = argc > 1 ? argv[1] : "";
  if (what == "list") {
    std::puts("conversion");
    std::puts("parse");
#ifdef VARIMESH_BENCH_PARSER
    std::puts("scene-graph");
#endif
#ifdef VARIMESH_BENCH_CHAINS
    std::puts("edges");
    std::puts("clusters");
#endif
  } else if (what == "conversion" && argc == 5) {
    measureConversion(argv[2], argv[3], argv[4]);
  } else if (what == "parse" && argc == 3) {
    std::printf("time %.6f\n", parseFile(argv[2]));
#ifdef VARIMESH_BENCH_PARSER
  } else if (what == "scene-graph" && argc == 3) {
    const double time = measureSceneGraphRead(argv[2]);
    if (time < 0) fail("the scene-graph library cannot read the scene");
    std::printf("time %.6f\n", time);
    std::fflush(stdout);
    std::_Exit(EXIT_SUCCESS);  // taking the scene apart is not measured
#endif
#ifdef VARIMESH_BENCH_CHAINS
  } else if (what == "edges" && argc == 3) {
    printChain(argv[2], measureEdgeChain);
  } else if (what == "clusters" && argc == 3) {
    printChain(argv[2], measureClusterChain);
#endif
  } else {
    return usage();
  }
  return EXIT_SUCCESS;
}

}  // namespace
}  // namespace varimesh

int main(int argc, char** argv) { return varimesh::runYardstick(argc, argv); }
