#pragma once

#import <Cocoa/Cocoa.h>

#include <utility>

namespace platform {

// Owns one reference to an Objective-C object and releases it on destruction. `Object` is a pointer type, as
// in Retained<NSWindow*>. The thread rules are those of the object.
template <typename Object>
class Retained {
 public:
  Retained() = default;
  // Takes over the reference that alloc, new or copy returns.
  explicit Retained(Object object) : object_(object) {}
  ~Retained() { [object_ release]; }

  Retained(Retained&& other) noexcept : object_(std::exchange(other.object_, nil)) {}
  Retained& operator=(Retained&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  Retained(const Retained&) = delete;
  Retained& operator=(const Retained&) = delete;

  // Returns the object, still owned here; nil if there is none.
  [[nodiscard]] Object get() const { return object_; }

 private:
  Object object_ = nil;
};

// Retains an object and returns the new reference.
template <typename Object>
[[nodiscard]] Retained<Object> retained(Object object) {
  [object retain];
  return Retained<Object>(object);
}

}  // namespace platform
