#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/end_to_end/usage/session_records.h"
#include "tests/harness/servers/product_server_double.h"
#include "tests/harness/servers/raw_http_server.h"

// The two upload servers, which accept some uploads and fail others, and a record of the outcomes.
// Thread-safe.
class UploadServers {
 public:
  // `advanceClock` is called repeatedly while a server leaves an upload without a reply. It must advance
  // the clock by much less than an upload's timeout.
  UploadServers(unsigned seed, std::function<void()> advanceClock);

  // The test upload server, with all outcomes.
  [[nodiscard]] std::string testServer() const {
    return "http://127.0.0.1:" + std::to_string(server_.port());
  }
  // The product server, with the outcomes that have a complete reply.
  [[nodiscard]] test_support::ProductServerDouble::Reply judge(const test_support::ServedRequest& request);

  // Returns how many uploads have completed with some outcome.
  [[nodiscard]] std::size_t arrived() const;
  [[nodiscard]] std::size_t accepted() const;
  [[nodiscard]] RecordCounts recordsAccepted() const;
  // Returns errors, given the contents of the remaining past files: a file that was damaged or accepted
  // twice, or that is gone without having been accepted.
  [[nodiscard]] std::vector<std::string> errors(const std::set<std::string>& filesLeft) const;

 private:
  // Successes first. Of the failures, the product server uses only the first.
  enum class Outcome {
    Accepted,
    AcceptedWithoutText,
    AcceptedWithErrorStatus,
    InvalidUtf8,
    Reset,
    NoReply,
    TruncatedReply
  };

  [[nodiscard]] Outcome nextOutcome(unsigned failures);
  void serve(test_support::RawConnection& connection);
  void leaveUnanswered(test_support::RawConnection& connection);
  void add(const std::string& file, bool accepted);

  std::function<void()> advanceClock_;
  mutable std::mutex mutex_;
  std::mt19937 random_;
  std::size_t arrived_ = 0;
  std::set<std::string> days_;
  std::set<std::string> failed_;
  RecordCounts records_;
  std::vector<std::string> errors_;
  test_support::RawHttpServer server_;  // last, because it uses the members above
};
