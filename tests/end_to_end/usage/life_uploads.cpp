#include "tests/end_to_end/usage/life_uploads.h"

#include <string_view>
#include <utility>

#include "usage/upload_rules.h"

namespace {

using test_support::httpReply;

constexpr std::string_view kNotText = "\xff\xfe";

std::string fileIn(const std::string& body) {
  const std::size_t head = uploadBodyHead().size(), around = head + uploadBodyTail().size();
  return body.size() < around ? "" : body.substr(head, body.size() - around);
}

std::string dayOf(const std::string& file) {
  return file.substr(0, std::string_view("TVLD2024-03-07").size());
}

}  // namespace

LifeUploads::LifeUploads(unsigned seed, std::function<void()> letSomeTimePass)
    : letSomeTimePass_(std::move(letSomeTimePass)),
      random_(seed),
      server_([this](test_support::RawConnection& connection) { serve(connection); }) {}

// The first upload fails and the second is accepted, so that even the shortest session has both.
LifeUploads::Fate LifeUploads::nextFate(unsigned waysToFail) {
  constexpr unsigned waysToSucceed = static_cast<unsigned>(Fate::NotText);
  const std::lock_guard lock(mutex_);
  const auto drawn = static_cast<unsigned>(random_());
  const bool succeeds = arrived_ == 1 || (arrived_ > 1 && drawn % 2 == 0);
  return static_cast<Fate>(succeeds ? drawn / 2 % waysToSucceed : waysToSucceed + drawn / 2 % waysToFail);
}

test_support::ProductServerDouble::Reply LifeUploads::judge(const test_support::ServedRequest& request) {
  const Fate fate = nextFate(1);
  enter(fileIn(request.body), fate != Fate::NotText);
  switch (fate) {
    case Fate::TakenWithoutText:
      return {200, ""};
    case Fate::TakenWithAnError:
      return {500, "the disk is full"};
    case Fate::NotText:
      return {200, std::string(kNotText)};
    default:
      return {200, "thanks"};
  }
}

void LifeUploads::serve(test_support::RawConnection& connection) {
  const std::string request = connection.readRequest();
  const std::string file = fileIn(request.substr(request.find("\r\n\r\n") + 4));
  switch (nextFate(4)) {
    case Fate::Taken:
      return enter(file, connection.send(httpReply("thanks")));
    case Fate::TakenWithoutText:
      return enter(file, connection.send(httpReply("")));
    case Fate::TakenWithAnError:
      return enter(file, connection.send(httpReply("the disk is full", "", "500 Internal Server Error")));
    case Fate::NotText:
      connection.send(httpReply(kNotText));
      break;
    case Fate::Reset:
      connection.reset();
      break;
    case Fate::Silence:
      leaveWithoutAnswer(connection);
      break;
    case Fate::HalfAnAnswer:
      connection.send(httpReply("thanks").substr(0, 30));
      break;
  }
  enter(file, false);
}

// An upload may start its timeout late, and without a faster clock the timeout would block the agent for
// longer than the test waits. The last step may shorten the timeout of the next upload, which the agent
// starts as soon as it gives this one up.
void LifeUploads::leaveWithoutAnswer(test_support::RawConnection& connection) {
  constexpr int tries = 80;
  for (int i = 0; i < tries; ++i) {
    letSomeTimePass_();
    if (connection.waitForEnd(std::chrono::milliseconds(250))) return;
  }
}

void LifeUploads::enter(const std::string& file, bool taken) {
  const std::lock_guard lock(mutex_);
  ++arrived_;
  if (!taken) {
    failed_.insert(file);
    return;
  }
  failed_.erase(file);
  if (!days_.insert(dayOf(file)).second) complaints_.push_back(dayOf(file) + " was taken twice");
  if (!countRecords(file, records_))
    complaints_.push_back(dayOf(file) + " came damaged or with another day's record");
}

std::size_t LifeUploads::arrived() const {
  const std::lock_guard lock(mutex_);
  return arrived_;
}

std::size_t LifeUploads::taken() const {
  const std::lock_guard lock(mutex_);
  return days_.size();
}

RecordCounts LifeUploads::recordsTaken() const {
  const std::lock_guard lock(mutex_);
  return records_;
}

std::vector<std::string> LifeUploads::complaints(const std::set<std::string>& filesLeft) const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> all = complaints_;
  for (const std::string& file : failed_) {
    if (!filesLeft.contains(file)) all.push_back(dayOf(file) + " was not taken, and is gone");
  }
  for (const std::string& file : filesLeft) {
    if (days_.contains(dayOf(file))) all.push_back(dayOf(file) + " was taken, and is still there");
  }
  return all;
}
