#include "tests/end_to_end/usage/upload_servers.h"

#include <string_view>
#include <utility>

#include "usage/upload_rules.h"

namespace {

using test_support::httpReply;

constexpr std::string_view kInvalidUtf8 = "\xff\xfe";

std::string fileIn(const std::string& body) {
  const std::size_t head = uploadBodyHead().size(), around = head + uploadBodyTail().size();
  return body.size() < around ? "" : body.substr(head, body.size() - around);
}

std::string dayOf(const std::string& file) {
  return file.substr(0, std::string_view("TVLD2024-03-07").size());
}

}  // namespace

UploadServers::UploadServers(unsigned seed, std::function<void()> advanceClock)
    : advanceClock_(std::move(advanceClock)),
      random_(seed),
      server_([this](test_support::RawConnection& connection) { serve(connection); }) {}

// The first upload fails and the second is accepted, so that even the shortest session has both.
UploadServers::Outcome UploadServers::nextOutcome(unsigned failures) {
  constexpr unsigned successes = static_cast<unsigned>(Outcome::InvalidUtf8);
  const std::lock_guard lock(mutex_);
  const auto drawn = static_cast<unsigned>(random_());
  const bool succeeds = arrived_ == 1 || (arrived_ > 1 && drawn % 2 == 0);
  return static_cast<Outcome>(succeeds ? drawn / 2 % successes : successes + drawn / 2 % failures);
}

test_support::ProductServerDouble::Reply UploadServers::judge(const test_support::ServedRequest& request) {
  const Outcome outcome = nextOutcome(1);
  add(fileIn(request.body), outcome != Outcome::InvalidUtf8);
  switch (outcome) {
    case Outcome::AcceptedWithoutText:
      return {200, ""};
    case Outcome::AcceptedWithErrorStatus:
      return {500, "the disk is full"};
    case Outcome::InvalidUtf8:
      return {200, std::string(kInvalidUtf8)};
    default:
      return {200, "thanks"};
  }
}

void UploadServers::serve(test_support::RawConnection& connection) {
  const std::string request = connection.readRequest();
  const std::string file = fileIn(request.substr(request.find("\r\n\r\n") + 4));
  switch (nextOutcome(4)) {
    case Outcome::Accepted:
      return add(file, connection.send(httpReply("thanks")));
    case Outcome::AcceptedWithoutText:
      return add(file, connection.send(httpReply("")));
    case Outcome::AcceptedWithErrorStatus:
      return add(file, connection.send(httpReply("the disk is full", "", "500 Internal Server Error")));
    case Outcome::InvalidUtf8:
      connection.send(httpReply(kInvalidUtf8));
      break;
    case Outcome::Reset:
      connection.reset();
      break;
    case Outcome::NoReply:
      leaveUnanswered(connection);
      break;
    case Outcome::TruncatedReply:
      connection.send(httpReply("thanks").substr(0, 30));
      break;
  }
  add(file, false);
}

// An upload may start its timeout late, and without a faster clock the timeout would block the agent for
// longer than the test waits. The last step may shorten the timeout of the next upload, which the agent
// starts as soon as it gives this one up.
void UploadServers::leaveUnanswered(test_support::RawConnection& connection) {
  constexpr int tries = 80;
  for (int i = 0; i < tries; ++i) {
    advanceClock_();
    if (connection.waitForEnd(std::chrono::milliseconds(250))) return;
  }
}

void UploadServers::add(const std::string& file, bool accepted) {
  const std::lock_guard lock(mutex_);
  ++arrived_;
  if (!accepted) {
    failed_.insert(file);
    return;
  }
  failed_.erase(file);
  if (!days_.insert(dayOf(file)).second) errors_.push_back(dayOf(file) + " was accepted twice");
  if (!countRecords(file, records_))
    errors_.push_back(dayOf(file) + " came damaged or with another day's record");
}

std::size_t UploadServers::arrived() const {
  const std::lock_guard lock(mutex_);
  return arrived_;
}

std::size_t UploadServers::accepted() const {
  const std::lock_guard lock(mutex_);
  return days_.size();
}

RecordCounts UploadServers::recordsAccepted() const {
  const std::lock_guard lock(mutex_);
  return records_;
}

std::vector<std::string> UploadServers::errors(const std::set<std::string>& filesLeft) const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> all = errors_;
  for (const std::string& file : failed_) {
    if (!filesLeft.contains(file)) all.push_back(dayOf(file) + " was not accepted and is gone");
  }
  for (const std::string& file : filesLeft) {
    if (days_.contains(dayOf(file))) all.push_back(dayOf(file) + " was accepted but not deleted");
  }
  return all;
}
