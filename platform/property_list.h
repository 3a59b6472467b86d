#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace platform {

// One value of a property list, a tree of typed values in which desktop programs store settings. A value
// type; usable on any thread, by one thread at a time.
class PropertyList {
 public:
  using Array = std::vector<PropertyList>;
  struct Entry;
  // Entries with distinct keys.
  class Dictionary {
   public:
    // Which of several entries with the same key stays.
    enum class Keep { First, Last };

    Dictionary();
    Dictionary(std::initializer_list<Entry> entries);
    Dictionary(std::vector<Entry> entries, Keep keep);
    // Defined where Entry is complete.
    Dictionary(const Dictionary& other);
    Dictionary(Dictionary&& other) noexcept;
    Dictionary& operator=(const Dictionary& other);
    Dictionary& operator=(Dictionary&& other) noexcept;
    ~Dictionary();

    // Sorted by key.
    [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }
    // Returns nullptr if there is none. The pointer is valid until this object changes.
    [[nodiscard]] const PropertyList* find(std::string_view key) const;

    bool operator==(const Dictionary& other) const;

   private:
    std::vector<Entry> entries_;
  };
  using Data = std::vector<std::byte>;
  // Seconds since 2001-01-01T00:00:00Z.
  struct Date {
    double seconds = 0;
    bool operator==(const Date&) const = default;
  };
  // The null value, which only binary lists have.
  struct Null {
    bool operator==(const Null&) const = default;
  };
  // Text is UTF-8 and may contain NUL characters.
  using Value = std::variant<bool, std::int64_t, double, std::string, Data, Date, Array, Dictionary, Null>;

  PropertyList() : value_(false) {}
  PropertyList(Value value) : value_(std::move(value)) {}

  // Returns the value if it has this type, else nullptr. The pointer is valid until this object is changed or
  // destroyed.
  template <typename T>
  [[nodiscard]] const T* as() const {
    return std::get_if<T>(&value_);
  }

  // Returns the entry `key` of a dictionary; nullptr if there is none or this is not a dictionary.
  [[nodiscard]] const PropertyList* find(std::string_view key) const;

  // Returns the entry `key` if it is text, else nullptr.
  [[nodiscard]] const std::string* textAt(std::string_view key) const;

  // Replaces the value by one of this type, constructed in place.
  template <typename T>
  void set(T&& value) {
    value_.emplace<std::remove_cvref_t<T>>(std::forward<T>(value));
  }

  bool operator==(const PropertyList&) const = default;

 private:
  Value value_;
};

struct PropertyList::Entry {
  std::string key = {};
  PropertyList value = {};

  bool operator==(const Entry&) const = default;
};

// Limits on reading. A list that exceeds one of them is unreadable, so that a malicious list takes at most a
// few megabytes besides its own bytes, and less than a second.
//
// Bytes are those of the list and, additionally, those of the texts (as UTF-8) and data read from it. Objects
// are values and keys; a shared object counts at each reference. Depth is the nesting of arrays and
// dictionaries.
inline constexpr std::size_t propertyListMaxBytes = 1u << 20;
inline constexpr std::size_t propertyListMaxObjects = 20'000;
inline constexpr std::size_t propertyListMaxDepth = 64;

// Parses a property list. The first bytes select the format: binary ("bplist0"), XML (the PropertyList-1.0
// DTD) or the old text format, also used for ".strings" files (doc/server.md, doc/compatibility.md). Returns
// nullopt if the bytes are not a complete list or exceed a limit above. Thread-safe.
//
// The root may have any type: in the old text format a single word is a list, a string. Of entries with the
// same key, the first counts in a binary list, the last in the other formats. An integer beyond 64 bits,
// signed, makes the list unreadable. A set becomes an array, a UID the dictionary {"CF$UID": number}.
[[nodiscard]] std::optional<PropertyList> parsePropertyList(std::span<const std::byte> bytes);

// Why a list could not be read from a file.
enum class PropertyListError {
  BadPath,     // not a possible path: empty, too long, with a NUL, or not UTF-8
  NoStream,    // not a file that bytes can be read from: a folder, a pipe, a device
  OpenFailed,  // does not exist or may not be read
  Unreadable,  // not a property list, or beyond a limit
};

// Reads the property list file at `path`. Reads the whole file once and never waits for a writer. Closes the
// file in every case. Thread-safe.
[[nodiscard]] std::variant<PropertyList, PropertyListError> readPropertyListFile(const std::string& path);

}  // namespace platform
