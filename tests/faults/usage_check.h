#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/faults/unusual_output.h"

// A usage file of a past day, to be uploaded by the agent, and the prefix of its contents.
struct PastFile {
  std::string path;
  std::string beginning;
};

// Counts the records that a session's files must hold, so that both lost and duplicated ones are detected.
class UsageCheck {
 public:
  // The file that waits for the upload of each launch.
  static const PastFile waiting;

  // Recreates the folder with `waiting` and, unless this is the user's first launch, the settings.
  void begin(bool isFirstLaunch);

  // Counts a record, identified by its prefix, that the agent was asked to write, whose message it has read,
  // or that was seen in a file.
  void expect(const std::string& record) { ++expected_[record]; }
  void noteRead(const std::string& record) { ++read_[record]; }
  void noteWritten(const std::string& record) { ++written_[record]; }
  [[nodiscard]] int expected(const std::string& record) { return expected_[record]; }

  // Return how often these bytes are in the files; `writtenWhole` skips damaged files, whose last record may
  // still be cut off.
  [[nodiscard]] static int written(const std::string& bytes);
  [[nodiscard]] static int writtenWhole(const std::string& bytes);
  // As `written`, but also counts uploads whose file was deleted.
  [[nodiscard]] static int retained(const std::string& bytes, const std::vector<std::string>& uploads);

  // Each of these returns what is wrong; an empty text if nothing is. `uploads` are the contents that the
  // server received.
  //
  // Checks what must hold at any time.
  [[nodiscard]] std::string damage(const std::vector<std::string>& uploads) const;
  // Checks that no record is duplicated and that none that was seen is missing.
  [[nodiscard]] std::string duplicatesOrLosses(int starts, const std::vector<std::string>& uploads,
                                               const UnusualOutput& output) const;
  // Checks, after an agent with these numbers of starts and ends, that no more records are missing than it
  // reported. Without the pipe only messages that it has read count.
  [[nodiscard]] std::string missingRecords(int starts, int ends, bool hasPipe,
                                           const std::vector<std::string>& uploads,
                                           const UnusualOutput& output) const;
  // Checks that each of these files was uploaded and deleted, except as many as it reported. `call` is the
  // one that failed, which may excuse a file.
  [[nodiscard]] static std::string unsent(const std::vector<PastFile>& files, const std::string& call,
                                          const std::vector<std::string>& uploads,
                                          const UnusualOutput& output);

 private:
  bool isFirstLaunch_ = false;
  std::map<std::string, int> expected_, read_, written_;
};
