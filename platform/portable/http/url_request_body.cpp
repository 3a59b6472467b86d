#include "platform/portable/http/url_request_body.h"

#include <algorithm>

namespace platform {

UrlRequestBody::UrlRequestBody(const std::vector<std::span<const char>>& pieces) : pieces_(pieces) {
  for (const auto piece : pieces_) size_ += piece.size();
}

std::size_t UrlRequestBody::read(std::span<char> buffer) {
  std::size_t count = 0;
  while (count < buffer.size() && piece_ < pieces_.size()) {
    const auto rest = pieces_[piece_].subspan(offset_);
    const auto taken = rest.first(std::min(rest.size(), buffer.size() - count));
    std::copy(taken.begin(), taken.end(), buffer.data() + count);
    count += taken.size();
    offset_ += taken.size();
    if (taken.size() < rest.size()) break;
    ++piece_;
    offset_ = 0;
  }
  return count;
}

bool UrlRequestBody::seek(std::size_t position) {
  if (position > size_) return false;
  piece_ = 0;
  offset_ = position;
  while (piece_ < pieces_.size() && offset_ >= pieces_[piece_].size()) offset_ -= pieces_[piece_++].size();
  return true;
}

}  // namespace platform
