#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/property_list.h"

namespace platform {

// What a list being read may still cost. Every reader draws on one of these before it makes anything,
// whatever its form, and gives up when it is refused.
class ListBounds {
 public:
  [[nodiscard]] bool takeObjects(std::size_t count = 1) { return take(objectsLeft_, count); }
  // Bytes of text and data that the list will hold.
  [[nodiscard]] bool takeBytes(std::size_t count) { return take(bytesLeft_, count); }
  [[nodiscard]] std::size_t objectsLeft() const { return objectsLeft_; }

  // One array or dictionary being read, for as long as this object lives.
  class Level {
   public:
    explicit Level(ListBounds& bounds) : bounds_(bounds) { ++bounds_.depth_; }
    ~Level() { --bounds_.depth_; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

    [[nodiscard]] bool tooDeep() const { return bounds_.depth_ > propertyListMaxDepth; }

   private:
    ListBounds& bounds_;
  };

 private:
  static bool take(std::size_t& left, std::size_t count) {
    if (count > left) return false;
    left -= count;
    return true;
  }

  std::size_t objectsLeft_ = propertyListMaxObjects;
  std::size_t bytesLeft_ = propertyListMaxBytes;
  std::size_t depth_ = 0;
};

// The text of a list that is not binary, in UTF-8: the given bytes themselves, or what they were converted
// to.
class ListText {
 public:
  explicit ListText(std::string_view given) : given_(given) {}
  explicit ListText(std::string converted) : converted_(std::move(converted)) {}

  // Lives as long as this object and the bytes it was made from. Without a byte order mark.
  [[nodiscard]] std::string_view view() const { return converted_ ? std::string_view(*converted_) : given_; }

 private:
  std::optional<std::string> converted_;
  std::string_view given_;
};

// The encoding is what a byte order mark or the width of a leading '<' tells, else what an XML declaration
// names, else UTF-8. Nothing for bytes that are not valid in it, or whose text is larger than a list may be.
[[nodiscard]] std::optional<ListText> decodeListText(std::span<const std::byte> bytes);

// The three readers. Each takes a whole list that is no larger than propertyListMaxBytes, text as valid
// UTF-8.
[[nodiscard]] std::optional<PropertyList> readBinaryList(std::span<const std::byte> bytes);
[[nodiscard]] std::optional<PropertyList> readXmlList(std::string_view text);
[[nodiscard]] std::optional<PropertyList> readOldTextList(std::string_view text);

}  // namespace platform
