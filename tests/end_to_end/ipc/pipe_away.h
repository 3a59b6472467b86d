#pragma once

#include <sys/stat.h>

#include <filesystem>

// The command pipe, out of the way for as long as the object lives.
class PipeAway {
 public:
  PipeAway() { std::filesystem::rename(kPipe, kAway); }
  PipeAway(const PipeAway&) = delete;
  PipeAway& operator=(const PipeAway&) = delete;
  ~PipeAway() { std::filesystem::rename(kAway, kPipe); }

  // Another in its place, which nobody reads.
  [[nodiscard]] static bool putUnread() { return ::mkfifo(kPipe, 0666) == 0; }

 private:
  static constexpr const char* kPipe = "/tmp/KMPIPE";
  static constexpr const char* kAway = "/tmp/KMPIPE.away";
};
