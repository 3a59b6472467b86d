#pragma once

// FSEvents and the types of CoreFoundation in its interface, for the type check. See Cocoa.h.

#include <cstddef>
#include <cstdint>

typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFArray* CFArrayRef;
typedef const struct __CFString* CFStringRef;
typedef struct __CFRunLoop* CFRunLoopRef;
typedef double CFTimeInterval;
typedef unsigned char Boolean;

extern "C" CFRunLoopRef CFRunLoopGetMain();
extern "C" const CFStringRef kCFRunLoopCommonModes;

typedef struct __FSEventStream* FSEventStreamRef;
typedef const struct __FSEventStream* ConstFSEventStreamRef;
typedef std::uint32_t FSEventStreamCreateFlags;
typedef std::uint32_t FSEventStreamEventFlags;
typedef std::uint64_t FSEventStreamEventId;
typedef void (*FSEventStreamCallback)(ConstFSEventStreamRef stream, void* info, std::size_t count,
                                      void* paths, const FSEventStreamEventFlags* flags,
                                      const FSEventStreamEventId* ids);
struct FSEventStreamContext {
  long version;
  void* info;
  const void* (*retain)(const void* info);
  void (*release)(const void* info);
  CFStringRef (*copyDescription)(const void* info);
};
enum : FSEventStreamEventId { kFSEventStreamEventIdSinceNow = 0xFFFFFFFFFFFFFFFF };
enum : FSEventStreamCreateFlags { kFSEventStreamCreateFlagWatchRoot = 4 };

extern "C" {
FSEventStreamRef FSEventStreamCreate(CFAllocatorRef allocator, FSEventStreamCallback callback,
                                     FSEventStreamContext* context, CFArrayRef paths,
                                     FSEventStreamEventId since, CFTimeInterval latency,
                                     FSEventStreamCreateFlags flags);
void FSEventStreamScheduleWithRunLoop(FSEventStreamRef stream, CFRunLoopRef loop, CFStringRef mode);
Boolean FSEventStreamStart(FSEventStreamRef stream);
void FSEventStreamStop(FSEventStreamRef stream);
void FSEventStreamInvalidate(FSEventStreamRef stream);
void FSEventStreamRelease(FSEventStreamRef stream);
}
