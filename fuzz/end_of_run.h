// What the fuzzers share: attempts that end early, and reading from the bytes they are given.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace varimesh {

// Thrown in place of ending the process while an attempt is running.
struct EndOfRun {
  int status;
};

// Runs one attempt; answers false when the program would have ended with an error.
bool attempt(void (*run)(std::string_view input), std::string_view input);

// Takes numbers from the front of the input; zeros when it is used up.
class Bytes {
 public:
  explicit Bytes(std::string_view bytes) : bytes_(bytes) {}

  template <class T>
  T take() {
    T value{};
    const std::size_t size = sizeof value < bytes_.size() ? sizeof value : bytes_.size();
    if (size > 0) std::memcpy(&value, bytes_.data(), size);
    bytes_.remove_prefix(size);
    return value;
  }
  // A number from 0 to limit - 1.
  int below(int limit) { return take<std::uint8_t>() % limit; }
  [[nodiscard]] bool isEmpty() const { return bytes_.empty(); }
  [[nodiscard]] std::string_view getRest() const { return bytes_; }

 private:
  std::string_view bytes_;
};

// Stops the fuzzer with a finding.
[[noreturn]] void report(const char* what);

// Reads a scene, runs it through all phases with the present parameters, and answers the text
// written.
std::string writeScene(std::string_view text, bool join);

// All parameters as they are without any option.
void setDefaults();

}  // namespace varimesh
