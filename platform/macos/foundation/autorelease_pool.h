#pragma once

#import <Cocoa/Cocoa.h>

namespace platform {

// Releases what is autoreleased while it lives, on the thread that makes it.
class AutoreleasePool {
 public:
  AutoreleasePool() = default;
  ~AutoreleasePool() { [pool_ drain]; }
  AutoreleasePool(const AutoreleasePool&) = delete;
  AutoreleasePool& operator=(const AutoreleasePool&) = delete;

 private:
  NSAutoreleasePool* pool_ = [[NSAutoreleasePool alloc] init];
};

}  // namespace platform
