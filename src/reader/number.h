// Numbers as they are written in VRML 1.0 text.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "reader/charclass.h"

namespace varimesh {

struct Number {
  const char* end = nullptr;  // behind the number; the start itself when there is none
  bool isInteger = false;
  bool saturated = false;  // a float beyond single precision, replaced by the largest one
  int integer = 0;
  float real = 0;  // of an integer, too
};

// The general conversions, for the rare numbers that scanNumber does not convert itself.
double convertFloat(const char* begin, const char* end);
int convertUnsigned(const char* begin, const char* end, int base);

inline constexpr std::array<double, 23> exactPowersOfTen = {
    1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
    1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// 0, and a 0 followed by octal digits of which the first is not 0.
inline bool isOctal(const char* begin, const char* end) {
  if (begin == end || begin[0] != '0' || (end - begin > 1 && begin[1] == '0')) return false;
  for (; begin != end; ++begin) {
    if (*begin > '7') return false;
  }
  return true;
}

// Reads the longest number at `begin`. The text ends with a character that is part of no number.
//
//   integer   0  -?[1-9][0-9]*  0[1-7][0-7]*  0x[0-9a-fA-F]+
//   float     -?[0-9]*\.?[0-9]*([eE][-+]?[0-9]+)?
//
// What both forms match is an integer. Every part of a float is optional: a lone minus sign or
// point is 0, and so is an exponent without digits before it. Integers saturate at 32 bits.
//
// Digits are converted while they are scanned. With at most 19 of them the digits fit an integer of
// 64 bits; if that is below 2^53 and the power of ten at most 22, both are exact as doubles, so one
// multiplication or division rounds as a full conversion does.
inline Number scanNumber(const char* begin) {
  constexpr std::ptrdiff_t exactDigits = 19;
  Number number;
  const char* p = begin;
  const bool negative = *p == '-';
  if (negative) ++p;

  std::uint64_t digits = 0;  // wraps around beyond exactDigits; not used then
  const auto scanDigits = [&p, &digits] {
    const char* const first = p;
    for (; isDigit(*p); ++p) digits = 10 * digits + static_cast<unsigned char>(*p - '0');
    return p - first;
  };
  const char* const whole = p;
  std::ptrdiff_t count = scanDigits();
  const char* const wholeEnd = p;

  int exponent = 0;
  if (*p == '.') {
    ++p;
    const std::ptrdiff_t decimals = scanDigits();
    count += decimals;
    exponent = -static_cast<int>(std::min<std::ptrdiff_t>(decimals, 1000));
  }
  if (*p == 'e' || *p == 'E') {
    const char* q = p + 1;
    const bool down = *q == '-';
    if (*q == '-' || *q == '+') ++q;
    if (isDigit(*q)) {
      int written = 0;
      for (; isDigit(*q); ++q) written = std::min(10 * written + (*q - '0'), 10000);
      exponent += down ? -written : written;
      p = q;
    }
  }

  number.end = p;
  if (p == wholeEnd && count > 0) {
    if (*whole != '0') {
      const std::uint64_t limit = std::uint64_t{1} << 31;
      const bool isTooLarge = count > exactDigits || digits >= limit;
      const auto magnitude = static_cast<std::int64_t>(!isTooLarge ? digits
                                                       : negative  ? limit
                                                                   : limit - 1);
      number.isInteger = true;
      number.integer = static_cast<int>(negative ? -magnitude : magnitude);
    } else if (!negative && isOctal(whole, wholeEnd)) {
      number.isInteger = true;
      if (count == 1 && *p == 'x' && hasClass(p[1], CHAR_HEX)) {
        for (++p; hasClass(*p, CHAR_HEX);) ++p;
        number.end = p;
        number.integer = convertUnsigned(whole + 2, p, 16);
      } else if (count > 1) {
        number.integer = convertUnsigned(whole, wholeEnd, 8);
      }
      number.real = static_cast<float>(number.integer);
      return number;
    }
  }

  double value = 0;
  if (count > 0 && count <= exactDigits && digits < (std::uint64_t{1} << 53) && exponent >= -22 &&
      exponent <= 22) {
    value = static_cast<double>(digits);
    if (exponent < 0) {
      value /= exactPowersOfTen[static_cast<std::size_t>(-exponent)];
    } else {
      value *= exactPowersOfTen[static_cast<std::size_t>(exponent)];
    }
    if (negative) value = -value;
  } else if (count > 0) {
    value = convertFloat(begin, p);
  }
  number.real = static_cast<float>(value);
  if (std::isinf(number.real)) {
    number.saturated = !number.isInteger;
    number.real = std::copysign(std::numeric_limits<float>::max(), number.real);
  }
  return number;
}

}  // namespace varimesh
