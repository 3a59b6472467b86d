#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace platform {

// One value of a property list: the tree of typed values in which desktop programs keep settings.
// A plain value type; usable on any thread, shared by none.
class PropertyList {
 public:
  using Array = std::vector<PropertyList>;
  using Dictionary = std::map<std::string, PropertyList, std::less<>>;
  using Data = std::vector<std::byte>;
  // Seconds since 2001-01-01T00:00:00Z.
  struct Date {
    double seconds = 0;
    bool operator==(const Date&) const = default;
  };
  // The value that only binary lists know and that is none of the others.
  struct Null {
    bool operator==(const Null&) const = default;
  };
  // Text is UTF-8 and may hold NULs.
  using Value = std::variant<bool, std::int64_t, double, std::string, Data, Date, Array, Dictionary, Null>;

  PropertyList() : value_(false) {}
  PropertyList(Value value) : value_(std::move(value)) {}

  // The value when it is of this type, else nullptr. The pointer lives as long as this object is unchanged.
  template <typename T>
  [[nodiscard]] const T* as() const {
    return std::get_if<T>(&value_);
  }

  // The entry `key` of a dictionary; nullptr when there is none or this is no dictionary.
  [[nodiscard]] const PropertyList* find(std::string_view key) const;

  // The same, when the entry is text.
  [[nodiscard]] const std::string* textAt(std::string_view key) const;

  // Replaces the value by one of this type, which is built in place.
  template <typename T>
  void set(T value) {
    value_.emplace<T>(std::move(value));
  }

  bool operator==(const PropertyList&) const = default;

 private:
  Value value_;
};

// What reading is bounded by. A list beyond any of these is unreadable, so that even a hostile one costs no
// more than a few megabytes beside its own bytes, and less than a second.
//
// Bytes are those of the list and, once more, those of the texts and data read from it, as UTF-8; objects are
// values and keys, counted through shared references; depth is arrays and dictionaries inside each other.
inline constexpr std::size_t propertyListMaxBytes = 1u << 20;
inline constexpr std::size_t propertyListMaxObjects = 20'000;
inline constexpr std::size_t propertyListMaxDepth = 64;

// Reads a list in any of its three forms, told apart by the first bytes: binary ("bplist0"), XML (the
// PropertyList-1.0 DTD) or the old text form (also as a ".strings" file), which people write by hand
// (doc/server.md, doc/compatibility.md). Any thread. Nothing when the bytes
// are no whole list, or one beyond the bounds above.
//
// The root may be a value of any type: one bare word is a list in the old text form, a string. Of entries
// with the same key the first counts in a binary list, the last in the other two. An integer beyond 64 bits,
// signed, makes the list unreadable. A set comes as an array, a UID as the dictionary {"CF$UID": number}.
[[nodiscard]] std::optional<PropertyList> parsePropertyList(std::span<const std::byte> bytes);

// The step at which a list could not be had from a file.
enum class PropertyListError {
  BadPath,     // no path can look like this: empty, over-long, with a NUL, or not UTF-8
  NoStream,    // what stands at the path is nothing to read bytes from: a folder, a pipe, a device
  OpenFailed,  // it is not there or may not be read
  Unreadable,  // its bytes are no property list, or one beyond the bounds
};

// Reads the list in the file at `path`. Any thread; reads the whole file once and never waits for a
// writer. The file is closed in every case.
[[nodiscard]] std::variant<PropertyList, PropertyListError> readPropertyListFile(const std::string& path);

}  // namespace platform
