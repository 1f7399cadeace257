#include "reader/number.h"

#include <charconv>
#include <cstdlib>
#include <string>
#include <system_error>

namespace varimesh {

double convertFloat(const char* begin, const char* end) {
  double value = 0;
  if (std::from_chars(begin, end, value).ec == std::errc::result_out_of_range) {
    // Too large or too small: only strtod says which.
    value = std::strtod(std::string(begin, end).c_str(), nullptr);
  }
  return value;
}

int convertUnsigned(const char* begin, const char* end, int base) {
  std::uint32_t value = 0;
  if (std::from_chars(begin, end, value, base).ec != std::errc()) {
    value = std::numeric_limits<std::uint32_t>::max();
  }
  return static_cast<int>(value);
}

}  // namespace varimesh
