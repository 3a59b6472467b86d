#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/end_to_end/usage/life_records.h"
#include "tests/harness/servers/product_server_double.h"
#include "tests/harness/servers/raw_http_server.h"

// The two upload servers, which accept some uploads and fail others, and a record of the outcomes.
// Thread-safe.
class LifeUploads {
 public:
  // `letSomeTimePass` is called repeatedly while a server leaves an upload without a reply. It must advance
  // the clock by much less than an upload's timeout.
  LifeUploads(unsigned seed, std::function<void()> letSomeTimePass);

  // The test upload server, with all outcomes.
  [[nodiscard]] std::string testServer() const {
    return "http://127.0.0.1:" + std::to_string(server_.port());
  }
  // The product server, with the outcomes that have a complete reply.
  [[nodiscard]] test_support::ProductServerDouble::Reply judge(const test_support::ServedRequest& request);

  // Returns how many uploads have completed with some outcome.
  [[nodiscard]] std::size_t arrived() const;
  [[nodiscard]] std::size_t taken() const;
  [[nodiscard]] RecordCounts recordsTaken() const;
  // Returns errors, given the contents of the remaining past files: a file that was damaged or accepted
  // twice, or that is gone without having been accepted.
  [[nodiscard]] std::vector<std::string> complaints(const std::set<std::string>& filesLeft) const;

 private:
  // Successes first. Of the failures, the product server uses only the first.
  enum class Fate { Taken, TakenWithoutText, TakenWithAnError, NotText, Reset, Silence, HalfAnAnswer };

  [[nodiscard]] Fate nextFate(unsigned waysToFail);
  void serve(test_support::RawConnection& connection);
  void leaveWithoutAnswer(test_support::RawConnection& connection);
  void enter(const std::string& file, bool taken);

  std::function<void()> letSomeTimePass_;
  mutable std::mutex mutex_;
  std::mt19937 random_;
  std::size_t arrived_ = 0;
  std::set<std::string> days_;
  std::set<std::string> failed_;
  RecordCounts records_;
  std::vector<std::string> complaints_;
  test_support::RawHttpServer server_;  // last, because it uses the members above
};
