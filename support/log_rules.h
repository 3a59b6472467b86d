#pragma once

#include <array>
#include <chrono>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

// The decisions of the log collection, as functions of what they decide on. Any thread.

// "tovalinlog_2026-11-15T22-05-12": the folder below /tmp and the archive are called so.
[[nodiscard]] std::string collectionName(const std::tm& now);

struct CollectionCommand {
  std::string text;            // for the shell
  std::chrono::seconds limit;  // after which it is ended
};

// The commands that fill the folder and pack it, in their order. The next one is run whatever became of the
// one before. They make files that only the user can read, fill a folder that is there already only if it is
// the user's own, copy 20 MB from each source at most, and neither follow links nor open FIFOs there. Returns
// nullopt if a command does not fit the 512 bytes that it may take with its terminator.
[[nodiscard]] std::optional<std::array<CollectionCommand, 6>> collectionCommands(std::string_view name);
