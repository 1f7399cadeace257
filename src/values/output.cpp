#include "values/output.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace varimesh {

int global_indent = 4;
int global_tab = 8;
int global_noindent = 0;
int global_longcpl = 8;
int global_floatcpl = 6;
int global_cpl = 0;

namespace {

constexpr int lastColumn = 1048576;  // no line is indented further than this

// Writes `number` (below 10^15, in millionths) as a decimal fraction without trailing zeros.
char* formatMillionths(char* out, std::uint64_t number) {
  out = formatInt(out, static_cast<int>(number / 1000000));
  const auto fraction = static_cast<unsigned>(number % 1000000);
  if (fraction == 0) return out;
  *out++ = '.';
  for (const unsigned pair : {fraction / 10000, fraction / 100 % 100, fraction % 100}) {
    std::memcpy(out, &digitPairs[2 * std::size_t{pair}], 2);
    out += 2;
  }
  while (out[-1] == '0') --out;
  return out;
}

}  // namespace

Output::Output(std::FILE* file) : file_(file), buffer_(new char[capacity]) {}

Output::~Output() { flush(); }

bool Output::flush() {
  if (errno_ == 0 && used_ > 0 && std::fwrite(buffer_.get(), 1, used_, file_) != used_) {
    errno_ = errno != 0 ? errno : EIO;
  }
  used_ = 0;
  if (errno_ == 0 && std::fflush(file_) != 0) errno_ = errno != 0 ? errno : EIO;
  if (errno_ != 0) errno = errno_;
  return errno_ == 0;
}

void Output::writeLong(std::string_view text) {
  while (!text.empty()) {
    if (used_ == capacity) flush();
    const std::size_t part = std::min(text.size(), capacity - used_);
    std::memcpy(buffer_.get() + used_, text.data(), part);
    used_ += part;
    text.remove_prefix(part);
  }
}

void printIndent(Output& out, int column) {
  if (global_noindent != 0) return;
  column = std::clamp(column, 0, lastColumn);
  int tabs = 0;
  if (global_tab > 0) {
    tabs = column / global_tab;
    column %= global_tab;
  }
  // Nearly all lines: both are filled to a fixed size, of which the next text covers what is too
  // much.
  constexpr int usual = 16;
  if (tabs <= usual && column <= usual) {
    char* const room = out.reserve(2 * usual);
    std::memset(room, '\t', usual);
    std::memset(room + tabs, ' ', usual);
    return out.advance(room + tabs + column);
  }
  const auto repeat = [&out](char c, int count) {
    constexpr int most = 512;  // of what there is room for at once
    for (int part; count > 0; count -= part) {
      part = std::min(count, most);
      out.advance(std::fill_n(out.reserve(most), part, c));
    }
  };
  repeat('\t', tabs);
  repeat(' ', column);
}

void printFloat(Output& out, double number) {
  constexpr double largest = std::numeric_limits<float>::max();
  if (std::isnan(number)) number = 0;
  if (std::isinf(number)) number = std::copysign(largest, number);

  char* room = out.reserve(400);
  // A single times a million is exact in double precision, so rounding it to an integer (ties to
  // even) rounds exactly as "%f" does. The product of another number is off by less than 0.07,
  // which does not matter unless a tie is near. All else takes the general road.
  if (const double size = std::abs(number); size < 1e9) {
    const double millionths = size * 1e6;
    const long long rounded = std::llrint(millionths);
    if (double{static_cast<float>(size)} == size ||
        std::abs(millionths - static_cast<double>(rounded)) < 0.4) {
      if (std::signbit(number)) *room++ = '-';
      out.advance(formatMillionths(room, static_cast<std::uint64_t>(rounded)));
      return;
    }
  }
  char* end = std::to_chars(room, room + 400, number, std::chars_format::fixed, 6).ptr;
  while (end[-1] == '0') --end;
  if (end[-1] == '.') --end;
  out.advance(end);
}

int addColumns(int column, int columns) {
  return static_cast<int>(std::clamp<std::int64_t>(std::int64_t{column} + columns,
                                                   std::numeric_limits<int>::min(),
                                                   std::numeric_limits<int>::max()));
}

}  // namespace varimesh
