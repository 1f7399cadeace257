// Memory that runs out at a chosen moment: linked into the program in place of the library's `new`.
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <new>
#include <string_view>

namespace {

// Which allocation fails, counted from 1; 0 for none.
long failAt() {
  const char* const text = std::getenv("FAIL_AT");
  return text != nullptr ? std::atol(text) : 0;
}

bool fails() {
  static long count = 0;
  static const long first = failAt();
  static const bool onlyOne = std::getenv("FAIL_ONCE") != nullptr;
  ++count;
  if (first == 0 || count < first || (onlyOne && count > first)) return false;
  // The test must know that a run did meet the failure.
  constexpr std::string_view mark = "no memory\n";
  if (count == first && ::write(STDERR_FILENO, mark.data(), mark.size()) < 0) std::abort();
  return true;
}

}  // namespace

void* operator new(std::size_t size) {
  for (;;) {
    void* const memory = fails() ? nullptr : std::malloc(size > 0 ? size : 1);
    if (memory != nullptr) return memory;
    const std::new_handler handler = std::get_new_handler();
    if (handler == nullptr) throw std::bad_alloc();
    handler();
  }
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return ::operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
