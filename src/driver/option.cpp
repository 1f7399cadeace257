#include "driver/option.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace varimesh {

Option* Option::optionList = nullptr;

Option::Option(const char* longName, const char* shortName, bool specified)
    : specified_(specified), longName_(longName), shortName_(shortName), next_(optionList) {
  optionList = this;
}

Option::~Option() {
  Option** link = &optionList;
  while (*link != this) link = &(*link)->next_;
  *link = next_;
}

Option* Option::findByLongName(std::string_view name) {
  Option* option = optionList;
  while (option != nullptr && name != option->longName_) option = option->next_;
  return option;
}

Option* Option::findByShortName(std::string_view name) {
  Option* option = optionList;
  while (option != nullptr && name != option->shortName_) option = option->next_;
  return option;
}

bool Option::parse(int& argc, char** argv) {
  Option* current = nullptr;  // the last option met; the word behind it may be its parameter
  int kept = 1;
  for (int i = 1; i < argc; ++i) {
    char* const argument = argv[i];
    const std::string_view word = argument;
    if (!word.starts_with('-')) {
      if (current == nullptr || !current->takesParameter(argument)) argv[kept++] = argument;
      continue;
    }
    if (current != nullptr && current->missingParameter()) return false;
    Option* const option =
        word.starts_with("--") ? findByLongName(word.substr(2)) : findByShortName(word.substr(1));
    if (option == nullptr) {
      std::fprintf(stderr, "%s: unknown option '%s'\n", argv[0], argument);
      return false;
    }
    if (option->isSpecified()) {
      std::fprintf(stderr, "%s: option '%s' specified twice\n", argv[0], argument);
      return false;
    }
    option->setSpecified();
    current = option;
  }
  if (current != nullptr && current->missingParameter()) return false;
  argc = std::min(argc, kept);
  return true;
}

void OptionParameter::setSpecified() {
  Option::setSpecified();
  hasValue_ = false;
}

bool OptionParameter::missingParameter() const {
  if (hasValue_) return false;
  std::fputs("missing option parameter\n", stderr);
  return true;
}

bool OptionParameter::takesParameter(const char* text) {
  if (hasValue_) return false;
  setParameter(text);
  hasValue_ = true;
  return true;
}

void OptionLong::setParameter(const char* text) {
  using Limits = std::numeric_limits<std::int32_t>;
  const long number = std::strtol(text, nullptr, 10);
  value_ = static_cast<std::int32_t>(std::clamp<long>(number, Limits::min(), Limits::max()));
}

void OptionDouble::setParameter(const char* text) { value_ = std::strtod(text, nullptr); }

}  // namespace varimesh
