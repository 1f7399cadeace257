// Indexed data sets: what shapes refer to by number. A set keeps one reference for each value that
// was read, so that the input's index numbers find their values by position, and one record for
// each distinct value. Only records are written, and their places in the written list are the new
// index numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "values/output.h"

namespace varimesh {

// The number of a record within its set.
using Reference = std::uint32_t;

// The references of one set, by input position.
class ReferenceArray {
 public:
  [[nodiscard]] int getSize() const { return static_cast<int>(references_.size()); }
  void reserve(std::size_t size) { references_.reserve(size); }
  void append(Reference reference) { references_.push_back(reference); }
  // The position must lie in 0 to getSize() - 1; shapes check what they read from a file.
  Reference operator[](int position) const {
    return references_[static_cast<std::size_t>(position)];
  }

 private:
  std::vector<Reference> references_;
};

// The base of all records.
struct Data {
  int index = -1;  // the number under which the record is written; -1 before setIndices
};

// The part of a set that does not depend on what its records are. Records are numbered in order of
// first occurrence, so walking the references, a position is a first occurrence exactly when its
// reference is the next number not seen yet: no marks are needed.
class DataSet {
 public:
  // Distinct records; after setIndices the number of values written.
  int count = 0;
  // That many leading positions are always written and numbered, duplicates or not. Raised by
  // nodes that address the set by position and are not rewritten themselves.
  int uncompressed = 0;

  void raiseUncompressed(int positions) {
    if (positions > uncompressed) uncompressed = positions;
  }
  [[nodiscard]] int getMaxIndex() const { return array.getSize() - 1; }
  [[nodiscard]] Reference getIndex(int position) const { return array[position]; }

 protected:
  ReferenceArray array;

  // Calls visit(position, reference) for every position that is written, in order, as long as
  // the position is below `end`.
  template <class Visit>
  void forEachWritten(int end, Visit visit) const {
    Reference next = 0;
    for (int i = 0; i < end; ++i) {
      const Reference reference = array[i];
      const bool isFirst = reference == next;
      if (isFirst) ++next;
      if (isFirst || i < uncompressed) visit(i, reference);
    }
  }
};

// Writes what stands before every element of a list of records but the first.
inline void printRecordSeparator(Output& out, int indent) {
  out.put(',');
  breakLine(out, global_floatcpl, indent);
}

}  // namespace varimesh
