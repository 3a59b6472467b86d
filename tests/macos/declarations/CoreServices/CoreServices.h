#pragma once

// FSEvents and the types of CoreFoundation and libdispatch in its interface, for the type check. See Cocoa.h.

#include <cstddef>
#include <cstdint>

typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFArray* CFArrayRef;
typedef const struct __CFString* CFStringRef;
typedef double CFTimeInterval;
typedef unsigned char Boolean;

typedef struct dispatch_queue_s* dispatch_queue_t;
extern "C" dispatch_queue_t dispatch_get_main_queue();

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
void FSEventStreamSetDispatchQueue(FSEventStreamRef stream, dispatch_queue_t queue);
Boolean FSEventStreamStart(FSEventStreamRef stream);
void FSEventStreamStop(FSEventStreamRef stream);
void FSEventStreamInvalidate(FSEventStreamRef stream);
void FSEventStreamRelease(FSEventStreamRef stream);
}
