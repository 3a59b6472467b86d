#pragma once

#include <string>
#include <string_view>
#include <vector>

// What the agent has said of its fault: everything in its log and on its console but what it says every day.
class AgentsWords {
 public:
  // `log` as the time line has it, "log PRIORITY: TEXT"; other events of the time line are passed over.
  AgentsWords(const std::vector<std::string>& log, const std::string& console);

  // The first that is unusual; empty when there is none.
  [[nodiscard]] std::string first() const { return unusual_.empty() ? std::string() : unusual_.front(); }
  // Whether one of them has this in it.
  [[nodiscard]] bool tellOf(std::string_view text) const;

  // How many of them have it.
  [[nodiscard]] int count(std::string_view text) const;

  // Of each loss a word of its own will do, and no other: what else went wrong explains it to nobody. There
  // is one for each record that is lost, and for each upload that was not taken.
  [[nodiscard]] int lostRecords() const;
  [[nodiscard]] int failedUploads() const { return failedUploads_; }
  [[nodiscard]] bool tellOfTheEnd() const;
  [[nodiscard]] bool tellThatThePipeIsGone() const;
  // That something did not reach the main application.
  [[nodiscard]] bool tellOfTheCommandPipe() const;

 private:
  std::vector<std::string> unusual_;
  int failedUploads_ = 0;
};
