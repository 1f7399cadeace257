#include "shapes/indexreader.h"

namespace varimesh {

IndexReader::IndexReader(Node& shape, FieldId field, Source source)
    : shape_(shape), field_(field), source_(source), hasField_(shape.getField(field) != nullptr) {
  if (const auto* list = shape.getValue<FLong>(field)) values_ = list->values;
}

std::size_t IndexReader::getCount(std::size_t n) const {
  switch (source_) {
    case Source::none: return 0;
    case Source::segmentNumber:
    case Source::listBySegment: return n - 1;
    default: return n;
  }
}

int IndexReader::read(const Polygon& polygon, std::size_t i) {
  switch (source_) {
    case Source::polygonNumber: return polygon.number;
    case Source::segmentNumber: return polygon.firstSegment + static_cast<int>(i);
    case Source::vertexNumber: return polygon.firstVertex + static_cast<int>(i);
    case Source::listByPolygon: return next();
    case Source::listBySegment:
    case Source::listByVertex: return hasField_ ? take() : polygon.positions[i];
    default: return -1;
  }
}

int IndexReader::next() const {
  if (values_.empty()) {
    shape_.error("incomplete %s\n", fieldIdString[static_cast<std::size_t>(field_)].data());
  }
  return values_.front();
}

int IndexReader::take() {
  const int index = next();
  values_ = values_.subspan(1);
  return index;
}

void IndexReader::endPolygon() {
  const bool isPerCorner = source_ == Source::listBySegment || source_ == Source::listByVertex;
  const bool isClosed = isPerCorner && !values_.empty() && values_.front() == -1;
  if (source_ == Source::listByPolygon || isClosed) values_ = values_.subspan(1);
}

}  // namespace varimesh
