// A small command-line library. Options are objects that link themselves into one list as they are
// made; one call of Option::parse then hands out the words of the command line.
#pragma once

#include <cstdint>
#include <string_view>

namespace varimesh {

// An option that is given or not. Names are not copied and must live as long as the option. Options
// are meant to be locals: the list holds plain pointers, and an option leaves it when it dies.
class Option {
 public:
  // Newest first.
  static Option* optionList;

  Option(const char* longName, const char* shortName, bool specified = false);
  Option(const Option&) = delete;
  Option& operator=(const Option&) = delete;

  // The newest option of that name, or null.
  static Option* findByLongName(std::string_view name);
  static Option* findByShortName(std::string_view name);

  // Takes all options and their parameters out of the argument vector; what remains, in its order,
  // are the other arguments. On the first fault says what it is on standard error and answers
  // false; the count is then unchanged.
  static bool parse(int& argc, char** argv);

  [[nodiscard]] bool isSpecified() const { return specified_; }

  // The option was met on the command line.
  virtual void setSpecified() { specified_ = true; }
  // Whether a parameter is still awaited; says so on standard error.
  [[nodiscard]] virtual bool missingParameter() const { return false; }
  // Offers the word behind the option; true when the option takes it.
  virtual bool takesParameter(const char*) { return false; }

 protected:
  ~Option();

 private:
  bool specified_;
  const char* longName_;
  const char* shortName_;
  Option* next_;
};

class OptionFlag final : public Option {
 public:
  OptionFlag(const char* longName, const char* shortName) : Option(longName, shortName) {}
};

// An option that takes the word behind it. Once met it waits for that word, even when it has a
// default; the default stays readable until then.
class OptionParameter : public Option {
 public:
  void setSpecified() override;
  [[nodiscard]] bool missingParameter() const override;
  bool takesParameter(const char* text) override;
  virtual void setParameter(const char*) {}

 protected:
  OptionParameter(const char* longName, const char* shortName, bool hasValue)
      : Option(longName, shortName), hasValue_(hasValue) {}
  ~OptionParameter() = default;

 private:
  bool hasValue_;  // false while a parameter is awaited
};

class OptionString final : public OptionParameter {
 public:
  OptionString(const char* longName, const char* shortName)
      : OptionParameter(longName, shortName, false) {}
  OptionString(const char* longName, const char* shortName, const char* value)
      : OptionParameter(longName, shortName, true), value_(value) {}

  [[nodiscard]] const char* getValue() const { return value_; }
  void setParameter(const char* text) override { value_ = text; }

 private:
  const char* value_ = nullptr;  // points into the argument vector
};

// A number that fits no format reads as far as it goes, or as 0; one that is out of range becomes
// the nearest that is in range. Neither is a fault.
class OptionLong final : public OptionParameter {
 public:
  OptionLong(const char* longName, const char* shortName)
      : OptionParameter(longName, shortName, false) {}
  OptionLong(const char* longName, const char* shortName, std::int32_t value)
      : OptionParameter(longName, shortName, true), value_(value) {}

  [[nodiscard]] std::int32_t getValue() const { return value_; }
  void setParameter(const char* text) override;

 private:
  std::int32_t value_ = 0;
};

class OptionDouble final : public OptionParameter {
 public:
  OptionDouble(const char* longName, const char* shortName)
      : OptionParameter(longName, shortName, false) {}
  OptionDouble(const char* longName, const char* shortName, double value)
      : OptionParameter(longName, shortName, true), value_(value) {}

  [[nodiscard]] double getValue() const { return value_; }
  void setParameter(const char* text) override;

 private:
  double value_ = 0.0;
};

}  // namespace varimesh
