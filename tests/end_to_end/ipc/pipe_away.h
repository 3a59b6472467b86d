#pragma once

#include <sys/stat.h>

#include <filesystem>

// Renames the command pipe, and restores it in the destructor.
class PipeAway {
 public:
  PipeAway() { std::filesystem::rename(kPipe, kAway); }
  PipeAway(const PipeAway&) = delete;
  PipeAway& operator=(const PipeAway&) = delete;
  ~PipeAway() { std::filesystem::rename(kAway, kPipe); }

  // Creates another pipe at the path, without a reader.
  [[nodiscard]] static bool putUnread() { return ::mkfifo(kPipe, 0666) == 0; }

 private:
  static constexpr const char* kPipe = "/tmp/KMPIPE";
  static constexpr const char* kAway = "/tmp/KMPIPE.away";
};
