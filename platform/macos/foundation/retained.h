#pragma once

#import <Cocoa/Cocoa.h>

#include <utility>

namespace platform {

// Owns one reference to an Objective-C object and releases it when it goes away. `Object` is a pointer to
// the class, as in Retained<NSWindow*>. The thread is the object's.
template <typename Object>
class Retained {
 public:
  Retained() = default;
  // Takes over the reference that alloc, new and copy return.
  explicit Retained(Object object) : object_(object) {}
  ~Retained() { [object_ release]; }

  Retained(Retained&& other) noexcept : object_(std::exchange(other.object_, nil)) {}
  Retained& operator=(Retained&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  Retained(const Retained&) = delete;
  Retained& operator=(const Retained&) = delete;

  // nil if there is none; still owned here.
  [[nodiscard]] Object get() const { return object_; }

 private:
  Object object_ = nil;
};

// Keeps an object that somebody else owns.
template <typename Object>
[[nodiscard]] Retained<Object> retained(Object object) {
  [object retain];
  return Retained<Object>(object);
}

}  // namespace platform
