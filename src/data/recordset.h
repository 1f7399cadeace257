// The deduplicating set behind coordinates, materials, normals and texture coordinates.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "data/dataset.h"
#include "values/hash.h"

namespace varimesh {

// A Record derives from Data and has compareWith (0 when equal), hash, and print.
// Equal values share the record that was inserted first. A hash table finds it in constant time,
// whatever the order of the input; a search tree would degenerate on sorted lists.
template <class Record>
class RecordSet : public DataSet {
 public:
  // Announces how many values are coming.
  void reserve(std::size_t values) {
    constexpr std::size_t few = 32;  // more may be the same value over and over
    array.reserve(values);
    records.reserve(std::min(values, few));
  }

  // Adds the next value of the input and returns the record that stands for it.
  Reference insert(const Record& record) {
    if (slots_.size() < 2 * records.size() + 2) grow();
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = record.hash() & mask;
    while (slots_[slot] != 0 && records[slots_[slot] - 1].compareWith(record) != 0) {
      slot = (slot + 1) & mask;
    }
    if (slots_[slot] == 0) {
      records.push_back(record);
      slots_[slot] = static_cast<std::uint32_t>(records.size());
      count = static_cast<int>(records.size());
    }
    array.append(slots_[slot] - 1);
    return slots_[slot] - 1;
  }

  // Gives every record the number under which it is written. A record that `uncompressed` makes
  // appear more than once gets the last of its numbers. Ends insertion.
  void setIndices() {
    std::vector<std::uint32_t>().swap(slots_);
    int next = 0;
    forEachWritten(array.getSize(),
                   [&](int, Reference reference) { records[reference].index = next++; });
    count = next;
    isRenumbered_ = next != static_cast<int>(records.size());
  }

  // Writes the records as one list in the order of setIndices; `field` is handed to each.
  void printSet(Output& out, int indent, int field) {
    printUpTo(array.getSize(), out, indent, field);
  }

  [[nodiscard]] bool isEmpty() const { return records.empty(); }
  // The number under which the value at an input position is written, after setIndices. As long as
  // every record is written once, that is the number of the record.
  [[nodiscard]] int getWrittenIndex(int position) const {
    const Reference reference = array[position];
    return isRenumbered_ ? records[reference].index : static_cast<int>(reference);
  }

 protected:
  std::vector<Record> records;

  // Writes the list as if the input ended at position `end`.
  void printUpTo(int end, Output& out, int indent, int field) {
    global_cpl = 0;
    uncompressed = std::min(uncompressed, array.getSize());
    bool isFirst = true;
    forEachWritten(end, [&](int, Reference reference) {
      if (!isFirst) printRecordSeparator(out, indent);
      isFirst = false;
      records[reference].print(out, field);
    });
  }

 private:
  void grow() {
    const std::size_t size = slots_.empty() ? 64 : 4 * slots_.size();
    slots_.assign(size, 0);
    for (std::size_t i = 0; i < records.size(); ++i) {
      std::size_t slot = records[i].hash() & (size - 1);
      while (slots_[slot] != 0) slot = (slot + 1) & (size - 1);
      slots_[slot] = static_cast<std::uint32_t>(i + 1);
    }
  }

  bool isRenumbered_ = false;
  std::vector<std::uint32_t> slots_;  // record number plus one; 0 is free; a power of two of them
};

}  // namespace varimesh
