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

// The two servers that take uploads, well or not, and the book in which it stands what became of each. All of
// its methods may be called on any thread.
class LifeUploads {
 public:
  // `letSomeTimePass` is called again and again while a server leaves an upload without an answer. It must be
  // far less than an upload waits.
  LifeUploads(unsigned seed, std::function<void()> letSomeTimePass);

  // The test upload server: any fate.
  [[nodiscard]] std::string testServer() const {
    return "http://127.0.0.1:" + std::to_string(server_.port());
  }
  // The product server: any fate in which there is a whole answer.
  [[nodiscard]] test_support::ProductServerDouble::Reply judge(const test_support::ServedRequest& request);

  // How many have met their fate.
  [[nodiscard]] std::size_t arrived() const;
  [[nodiscard]] std::size_t taken() const;
  [[nodiscard]] RecordCounts recordsTaken() const;
  // What must not be, given the past files that are still there: a file that was damaged, or taken twice, or
  // one that was not taken and is gone.
  [[nodiscard]] std::vector<std::string> complaints(const std::set<std::string>& filesLeft) const;

 private:
  // The good ones first; of the others, the first is all that the product server has.
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
  test_support::RawHttpServer server_;  // the last: it uses all the others
};
