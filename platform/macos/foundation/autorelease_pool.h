#pragma once

#import <Cocoa/Cocoa.h>

namespace platform {

// Autorelease pool for a scope. Belongs to the thread that creates it.
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
