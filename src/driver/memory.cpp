// The program's memory management: operator new and delete, for one thread.
//
// A scene of small shapes is made of millions of small objects, some fifty for each shape. Small
// blocks are cut from pools, and kept, once freed, in a list for each size; to get or to give back
// one takes some ten instructions. Large blocks come from the C library. Measured beside the C
// library alone, a hundred thousand small shapes take a sixth less time with levels and a quarter
// less without.
//
// Only the program itself is linked with this, and not when it is built with sanitizers, which then
// watch each block. It must not take part in link-time optimisation: a compiler that sees both
// sides may leave out what is written to a block before it is given away or after it has come back.
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

// Blocks are measured in units. Every block is preceded by a header in the last bytes of a unit, so
// that it is itself aligned for every type.
constexpr std::size_t unit = __STDCPP_DEFAULT_NEW_ALIGNMENT__;
using Header = std::uint64_t;          // units of a small block, header included; 0: a large block
constexpr std::size_t mostUnits = 64;  // of a small block

// Bytes of the pools that small blocks are cut from: of the first, and of the largest; each is
// twice as large as the one before.
constexpr std::size_t firstPoolSize = std::size_t{1} << 15;
constexpr std::size_t largestPoolSize = std::size_t{1} << 20;
constexpr std::size_t pageSize = 4096;

struct FreeBlock {
  FreeBlock* next;
};
// Even a block of no bytes has room for a link.
static_assert(sizeof(Header) + sizeof(FreeBlock) <= unit);

struct Memory {
  std::array<FreeBlock*, mostUnits + 1> freeBlocks{};  // by size in units
  // The part of the newest pool that has not been used yet; begins with the next block's header.
  char* begin = nullptr;
  char* end = nullptr;
  std::size_t poolSize = firstPoolSize;  // of the next pool
};
constinit Memory memory;

void* getLarge(std::size_t size) {
  if (size > SIZE_MAX - unit) return nullptr;
  char* const block = static_cast<char*>(std::malloc(size + unit));
  if (block == nullptr) return nullptr;
  char* const begin = block + unit;
  reinterpret_cast<Header*>(begin)[-1] = 0;
  return begin;
}

// Asks the system for all pages at once where it can do that: one fault for each page costs small
// shapes a twentieth of their time.
char* getPool(std::size_t size) {
  void* const pool = std::aligned_alloc(pageSize, size);
#ifdef MADV_POPULATE_WRITE
  if (pool != nullptr) madvise(pool, size, MADV_POPULATE_WRITE);
#endif
  return static_cast<char*>(pool);
}

void* cutFromPool(std::size_t units) {
  const std::size_t size = units * unit;
  if (static_cast<std::size_t>(memory.end - memory.begin) < size) {
    char* const pool = getPool(memory.poolSize);
    if (pool == nullptr) return nullptr;
    memory.begin = pool + unit - sizeof(Header);
    memory.end = pool + memory.poolSize;
    memory.poolSize = std::min(2 * memory.poolSize, largestPoolSize);
  }
  auto* const header = reinterpret_cast<Header*>(memory.begin);
  memory.begin += size;
  *header = units;
  return header + 1;
}

void* get(std::size_t size) {
  if (size > mostUnits * unit - sizeof(Header)) return getLarge(size);
  const std::size_t units = (size + sizeof(Header) + unit - 1) / unit;
  FreeBlock* const block = memory.freeBlocks[units];
  if (block == nullptr) return cutFromPool(units);
  memory.freeBlocks[units] = block->next;
  return block;
}

void giveBack(void* address) {
  if (address == nullptr) return;
  const Header units = static_cast<Header*>(address)[-1];
  if (units == 0) return std::free(static_cast<char*>(address) - unit);
  FreeBlock*& first = memory.freeBlocks[units];
  first = ::new (address) FreeBlock{first};
}

}  // namespace

// Never null: the handler that main sets ends the process.
void* operator new(std::size_t size) {
  for (;;) {
    if (void* const address = get(size)) return address;
    const std::new_handler handler = std::get_new_handler();
    if (handler == nullptr) std::abort();
    handler();
  }
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return ::operator new(size);
}

void operator delete(void* address) noexcept { giveBack(address); }
void operator delete(void* address, std::size_t) noexcept { giveBack(address); }
void operator delete(void* address, const std::nothrow_t&) noexcept { giveBack(address); }
