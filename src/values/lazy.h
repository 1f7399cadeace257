// An object that is made when it is first needed.
#pragma once

#include <memory>

namespace varimesh {

// Owns a T. A scene may have a million attribute nodes while one data set is alive at a time, so
// nodes do not pay for sets that are not in use. After reset the next use finds a new, empty one.
template <class T>
class Lazy {
 public:
  T& operator*() { return get(); }
  T* operator->() { return &get(); }
  void reset() { object_.reset(); }

 private:
  T& get() {
    if (object_ == nullptr) object_ = std::make_unique<T>();
    return *object_;
  }

  std::unique_ptr<T> object_;
};

}  // namespace varimesh
