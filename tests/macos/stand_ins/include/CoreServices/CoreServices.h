#pragma once

// The part of FSEvents that the watch on one folder uses.

#import <Foundation/Foundation.h>

#include <cstddef>
#include <cstdint>

typedef const struct __CFArray* CFArrayRef;
typedef const struct __CFString* CFStringRef;
typedef struct __CFRunLoop* CFRunLoopRef;

extern "C" CFRunLoopRef CFRunLoopGetMain();
extern "C" const CFStringRef kCFRunLoopCommonModes;

typedef struct __FSEventStream* FSEventStreamRef;
typedef const struct __FSEventStream* ConstFSEventStreamRef;
typedef std::uint32_t FSEventStreamEventFlags;
typedef std::uint32_t FSEventStreamCreateFlags;
typedef std::uint64_t FSEventStreamEventId;
typedef void (*FSEventStreamCallback)(ConstFSEventStreamRef stream, void* info, std::size_t count,
                                      void* paths, const FSEventStreamEventFlags* flags,
                                      const FSEventStreamEventId* ids);
struct FSEventStreamContext {
  long version;
  void* info;
  const void* (*retain)(const void*);
  void (*release)(const void*);
  CFStringRef (*copyDescription)(const void*);
};

inline constexpr FSEventStreamEventId kFSEventStreamEventIdSinceNow = ~FSEventStreamEventId{0};
enum { kFSEventStreamCreateFlagWatchRoot = 4 };

FSEventStreamRef FSEventStreamCreate(const void* allocator, FSEventStreamCallback callback,
                                     FSEventStreamContext* context, CFArrayRef paths,
                                     FSEventStreamEventId since, double latency,
                                     FSEventStreamCreateFlags flags);
void FSEventStreamScheduleWithRunLoop(FSEventStreamRef stream, CFRunLoopRef loop, CFStringRef mode);
unsigned char FSEventStreamStart(FSEventStreamRef stream);
void FSEventStreamStop(FSEventStreamRef stream);
void FSEventStreamInvalidate(FSEventStreamRef stream);
void FSEventStreamRelease(FSEventStreamRef stream);
