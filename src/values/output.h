// Text output: a buffered file and the layout rules that all printers share.
#pragma once

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

namespace varimesh {

// Layout of the written text, set once from the command line.
extern int global_indent;    // columns added for each nesting level of nodes
extern int global_tab;       // columns that one tab stands for; 0 or less: blanks only
extern int global_noindent;  // non-zero: no indentation at all
extern int global_longcpl;   // integers on a line of an integer list
extern int global_floatcpl;  // numbers on a line of a float list
// Numbers written on the present line since the last break; one counter for all printers, so that
// one printer can go on with a line that another began.
extern int global_cpl;

// "00", "01" up to "99".
inline constexpr std::array<char, 200> digitPairs = [] {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

// The most characters that an integer takes.
inline constexpr std::size_t intRoom = 11;

// Writes an integer and returns the end. With it, writing index lists takes two thirds of the
// instructions that it takes with std::to_chars.
inline char* formatInt(char* out, int number) {
  const auto putPair = [&out](unsigned pair) {
    std::memcpy(out, &digitPairs[2 * std::size_t{pair}], 2);
    out += 2;
  };
  const auto putFirst = [&out, putPair](unsigned pair) {
    if (pair < 10) {
      *out++ = static_cast<char>('0' + pair);
    } else {
      putPair(pair);
    }
  };
  auto size = static_cast<unsigned>(number);
  if (number < 0) {
    *out++ = '-';
    size = 0U - size;
  }
  if (size < 100) {
    putFirst(size);
  } else if (size < 10000) {
    putFirst(size / 100);
    putPair(size % 100);
  } else if (size < 1000000) {
    putFirst(size / 10000);
    putPair(size / 100 % 100);
    putPair(size % 100);
  } else if (size < 100000000) {
    putFirst(size / 1000000);
    putPair(size / 10000 % 100);
    putPair(size / 100 % 100);
    putPair(size % 100);
  } else {
    putFirst(size / 100000000);
    putPair(size / 1000000 % 100);
    putPair(size / 10000 % 100);
    putPair(size / 100 % 100);
    putPair(size % 100);
  }
  return out;
}

// A file that is written through a buffer of its own. The file stays the caller's to close.
class Output {
 public:
  explicit Output(std::FILE* file);
  ~Output();
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  void put(char c) {
    if (used_ == capacity) flush();
    buffer_[used_++] = c;
  }
  void write(std::string_view text) {
    if (text.size() > capacity - used_) return writeLong(text);
    std::memcpy(buffer_.get() + used_, text.data(), text.size());
    used_ += text.size();
  }
  void writeInt(int number) { advance(formatInt(reserve(intRoom), number)); }
  // Room for at least `size` bytes (at most 512), to be filled in and then taken with advance.
  char* reserve(std::size_t size) {
    if (capacity - used_ < size) flush();
    return buffer_.get() + used_;
  }
  void advance(char* end) { used_ = static_cast<std::size_t>(end - buffer_.get()); }

  // Hands the buffer to the file. False once any write has failed; errno then has the reason.
  bool flush();

 private:
  static constexpr std::size_t capacity = std::size_t{1} << 18;
  void writeLong(std::string_view text);

  std::FILE* file_;
  std::unique_ptr<char[]> buffer_;
  std::size_t used_ = 0;
  int errno_ = 0;  // of the first write that failed
};

// Writes the indentation of a line whose text starts at that column.
void printIndent(Output& out, int column);

// Writes a number with at most six decimals and no trailing zeros, rounded as "%f" does. A number
// that is not finite is written as the nearest finite single, not-a-number as 0.
void printFloat(Output& out, double number);

// A column further right by `columns`, saturated.
int addColumns(int column, int columns);

// The line-breaking rule of all lists of numbers: if the line already holds `limit` numbers,
// starts a new one, indented, and counts from 0 again.
inline void breakLine(Output& out, int limit, int indent) {
  if (global_cpl < limit) return;
  out.put('\n');
  printIndent(out, indent);
  global_cpl = 0;
}

}  // namespace varimesh
