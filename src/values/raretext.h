// A text that nearly every node lacks.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace varimesh {

// Takes the room of a pointer while it is empty. A scene of small shapes has five nodes for each of
// them; with strings for their names and declarations it took a seventh more memory.
class RareText {
 public:
  RareText() = default;
  explicit RareText(std::string_view text)
      : text_(text.empty() ? nullptr : std::make_unique<const std::string>(text)) {}

  [[nodiscard]] bool empty() const { return text_ == nullptr; }
  [[nodiscard]] const char* c_str() const { return text_ != nullptr ? text_->c_str() : ""; }
  operator std::string_view() const { return text_ != nullptr ? *text_ : std::string_view(); }
  void clear() { text_.reset(); }

 private:
  std::unique_ptr<const std::string> text_;
};

}  // namespace varimesh
