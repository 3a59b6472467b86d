#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/property_list.h"

namespace platform {

// Bounds the resources that a list may use while it is read. Every reader takes from one of these before it
// allocates, whatever the format, and fails when the bound is reached. For use by one thread.
class ListBounds {
 public:
  [[nodiscard]] bool takeObjects(std::size_t count = 1) { return take(objectsLeft_, count); }
  // Takes from the bytes of text and data that the list may hold.
  [[nodiscard]] bool takeBytes(std::size_t count) { return take(bytesLeft_, count); }
  [[nodiscard]] std::size_t objectsLeft() const { return objectsLeft_; }

  // An array or dictionary being read, for as long as this object exists.
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

// The text of a list that is not binary, in UTF-8: the given bytes or their conversion.
class ListText {
 public:
  explicit ListText(std::string_view given) : given_(given) {}
  explicit ListText(std::string converted) : converted_(std::move(converted)) {}

  // Valid as long as this object and the bytes that it was created from. Contains no byte order mark.
  [[nodiscard]] std::string_view view() const { return converted_ ? std::string_view(*converted_) : given_; }

 private:
  std::optional<std::string> converted_;
  std::string_view given_;
};

// Determines the encoding from a byte order mark or the width of a leading '<', else from an XML declaration;
// the default is UTF-8. Returns nullopt if the bytes are invalid in that encoding or the text exceeds the
// size limit of a list.
[[nodiscard]] std::optional<ListText> decodeListText(std::span<const std::byte> bytes);

// Each function parses a complete list of at most propertyListMaxBytes; text must be valid UTF-8. Returns
// nullopt if the list is malformed or exceeds the bounds. Thread-safe.
[[nodiscard]] std::optional<PropertyList> readBinaryList(std::span<const std::byte> bytes);
[[nodiscard]] std::optional<PropertyList> readXmlList(std::string_view text);
[[nodiscard]] std::optional<PropertyList> readOldTextList(std::string_view text);

}  // namespace platform
