#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/faults/agents_words.h"

// A file of a day that is over, which the agent is to send, and how its contents begin.
struct PastFile {
  std::string path;
  std::string beginning;
};

// What a life's files must hold in the end, counted, so that what is lost shows as well as what comes twice.
class UsageAccount {
 public:
  // The file that waits for the upload of each launch.
  static const PastFile waiting;

  // Makes the folder anew, with `waiting` in it and, unless this is the first launch of all, the settings.
  void begin(bool isFirstLaunch);

  // A record, known by its beginning, that the agent is to write; that it has got the message for; and that
  // was seen in a file.
  void ask(const std::string& record) { ++asked_[record]; }
  void tellRead(const std::string& record) { ++read_[record]; }
  void tellWritten(const std::string& record) { ++written_[record]; }
  [[nodiscard]] int asked(const std::string& record) { return asked_[record]; }

  // How often these bytes are in the files; in those that are whole, since half a record may be cut back yet.
  [[nodiscard]] static int written(const std::string& bytes);
  [[nodiscard]] static int writtenWhole(const std::string& bytes);
  // ... and in what was sent and is no file any more.
  [[nodiscard]] static int kept(const std::string& bytes, const std::vector<std::string>& uploads);

  // Each of these says what is wrong, or nothing. `uploads` are the contents of what came to the server.
  //
  // What must hold at any time.
  [[nodiscard]] std::string damage(const std::vector<std::string>& uploads) const;
  // No record is there too often, and none is gone that was seen.
  [[nodiscard]] std::string doublesOrLosses(int starts, const std::vector<std::string>& uploads,
                                            const AgentsWords& words) const;
  // What must hold in the end of an agent that has made so many starts and ends: as many records are missing
  // as it tells of, and no more. Without the pipe only those that came through it count.
  [[nodiscard]] std::string missingRecords(int starts, int ends, bool hasPipe,
                                           const std::vector<std::string>& uploads,
                                           const AgentsWords& words) const;
  // ... and each of these files was sent and is gone, but for as many as it tells of. `call` is the one that
  // failed, which may excuse it.
  [[nodiscard]] static std::string unsent(const std::vector<PastFile>& files, const std::string& call,
                                          const std::vector<std::string>& uploads, const AgentsWords& words);

 private:
  bool isFirstLaunch_ = false;
  std::map<std::string, int> asked_, read_, written_;
};
