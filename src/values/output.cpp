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
  const std::uint64_t whole = number / 1000000;
  auto fraction = static_cast<std::uint32_t>(number % 1000000);
  out = std::to_chars(out, out + 20, whole).ptr;
  if (fraction == 0) return out;
  int digits = 6;
  while (fraction % 10 == 0) {
    fraction /= 10;
    --digits;
  }
  *out++ = '.';
  for (int i = digits - 1; i >= 0; --i) {
    out[i] = static_cast<char>('0' + fraction % 10);
    fraction /= 10;
  }
  return out + digits;
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
  const auto repeat = [&out](std::string_view text, int count) {
    for (auto left = static_cast<std::size_t>(count); left > 0;) {
      const std::string_view part = text.substr(0, left);
      out.write(part);
      left -= part.size();
    }
  };
  if (global_tab > 0) {
    repeat("\t\t\t\t\t\t\t\t", column / global_tab);
    column %= global_tab;
  }
  repeat("                                ", column);
}

void printFloat(Output& out, double number) {
  constexpr double largest = std::numeric_limits<float>::max();
  if (std::isnan(number)) number = 0;
  if (std::isinf(number)) number = std::copysign(largest, number);

  char* room = out.reserve(400);
  // A single times a million is exact in double precision, so rounding it to an integer (ties to
  // even) rounds exactly as "%f" does. Other numbers take the general road.
  if (const double size = std::abs(number);
      size < 1e9 && double{static_cast<float>(size)} == size) {
    if (std::signbit(number)) *room++ = '-';
    out.advance(formatMillionths(room, static_cast<std::uint64_t>(std::llrint(size * 1e6))));
    return;
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
