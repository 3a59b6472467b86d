#pragma once

#include <array>
#include <chrono>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

// Pure functions for the decisions of the log collection. Thread-safe.

// Returns the name of the folder below /tmp and of the archive, such as "tovalinlog_2026-11-15T22-05-12".
[[nodiscard]] std::string collectionName(const std::tm& now);

struct CollectionCommand {
  std::string text;            // a shell command
  std::chrono::seconds limit;  // after which the command is killed
};

// Returns the commands that create, fill and pack the folder, in order. Each command is run even if an
// earlier one failed. The commands create files that only the user can read, use an existing folder only if
// it belongs to the user, copy at most 20 MB from each source, follow no symbolic links and open no FIFOs.
// Returns nullopt if a command with its terminator exceeds 512 bytes.
[[nodiscard]] std::optional<std::array<CollectionCommand, 6>> collectionCommands(std::string_view name);
