#pragma once

#include <string>
#include <string_view>
#include <vector>

// The unusual lines of the agent's log and console: everything that it does not print in every session.
class UnusualOutput {
 public:
  // `log` holds the events of the timeline; events other than "log PRIORITY: TEXT" are ignored.
  UnusualOutput(const std::vector<std::string>& log, const std::string& console);

  // Returns the first unusual line; empty if there is none.
  [[nodiscard]] std::string first() const { return unusual_.empty() ? std::string() : unusual_.front(); }
  // Returns whether a line contains `text`.
  [[nodiscard]] bool contains(std::string_view text) const;

  // Returns how many lines contain `text`.
  [[nodiscard]] int count(std::string_view text) const;

  // Counts only the message of that loss: one per lost record, one per upload that was not accepted. Other
  // messages do not explain a loss.
  [[nodiscard]] int lostRecords() const;
  [[nodiscard]] int failedUploads() const { return failedUploads_; }
  [[nodiscard]] bool reportsFatalError() const;
  [[nodiscard]] bool reportsLostPipe() const;
  // Returns whether a message to the main application was lost.
  [[nodiscard]] bool reportsCommandPipeError() const;

 private:
  std::vector<std::string> unusual_;
  int failedUploads_ = 0;
};
