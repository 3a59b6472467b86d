#include "tools/mainapp/message_splitter.h"

#include <algorithm>

namespace tools {
namespace {

std::string_view leadingMessage(std::string_view bytes) {
  std::string_view longest;
  for (const std::string_view message : kMessages) {
    if (bytes.starts_with(message) && message.size() > longest.size()) longest = message;
  }
  return longest;
}

void appendUnknownByte(std::vector<Message>& messages, char byte) {
  if (messages.empty() || messages.back().known) messages.push_back({});
  messages.back().text += byte;
}

}  // namespace

bool isKnownMessage(std::string_view text) {
  return std::find(kMessages.begin(), kMessages.end(), text) != kMessages.end();
}

std::vector<Message> splitMessages(std::string_view bytes) {
  std::vector<Message> messages;
  while (!bytes.empty()) {
    const std::string_view message = leadingMessage(bytes);
    if (message.empty()) {
      appendUnknownByte(messages, bytes.front());
      bytes.remove_prefix(1);
    } else {
      messages.push_back({std::string(message), true});
      bytes.remove_prefix(message.size());
    }
  }
  return messages;
}

}  // namespace tools
