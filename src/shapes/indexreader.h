// Reading one index list of a shape, polygon by polygon.
#pragma once

#include <span>

#include "reader/names.h"
#include "scene/node.h"

namespace varimesh {

// A polygon or polyline while it is read: its place in the shape and its coordIndex values.
struct Polygon {
  std::span<const int> positions;  // without the -1
  int number = 0;                  // polygons before it
  int firstSegment = 0;            // segments before it, in a line set
  int firstVertex = 0;             // vertices before it
};

// Answers, corner by corner, which entry of an attribute node a shape refers to.
class IndexReader {
 public:
  // Where the index of a corner comes from.
  enum class Source {
    none,           // the attribute is the same for the whole shape, or there is none
    polygonNumber,  // counted: one entry for each polygon,
    segmentNumber,  //   each segment (the last corner has none),
    vertexNumber,   //   or each corner
    listByPolygon,  // taken from the index list: one entry for each polygon,
    listBySegment,  //   each segment,
    listByVertex,   //   or each corner; the latter two from coordIndex where there is no list
  };

  // `field` names the index list of `shape`; a list that is not to be read has Source::none.
  IndexReader(Node& shape, FieldId field, Source source);

  [[nodiscard]] Source getSource() const { return source_; }
  // Whether indices are counted rather than read from a list.
  [[nodiscard]] bool isCounted() const {
    return source_ == Source::polygonNumber || source_ == Source::segmentNumber ||
           source_ == Source::vertexNumber;
  }
  // How many corners of a polygon of n corners have the attribute.
  [[nodiscard]] std::size_t getCount(std::size_t n) const;
  // The index of the next corner, i, of the polygon; an error of the shape when the list ends.
  int read(const Polygon& polygon, std::size_t i);
  // Passes over what stands between polygons.
  void endPolygon();

 private:
  [[nodiscard]] int next() const;
  int take();

  Node& shape_;
  FieldId field_;
  Source source_;
  bool hasField_;
  std::span<const int> values_;  // what is left of the list
};

}  // namespace varimesh
