#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace property_list_support {

// Builds a binary property list from objects given as bytes.
struct BinaryList {
  std::vector<std::string> objects;
  unsigned offsetSize = 2;
  unsigned referenceSize = 1;
  std::uint64_t topObject = 0;
  // Trailer values that override the correct ones.
  std::optional<std::uint64_t> wrongObjectCount = {};
  std::optional<std::uint64_t> wrongTableOffset = {};
  std::optional<unsigned> wrongOffsetSize = {};
  std::optional<unsigned> wrongReferenceSize = {};

  [[nodiscard]] std::string build() const {
    std::string list = "bplist00";
    std::string table;
    for (const std::string& object : objects) {
      table += bigEndian(list.size(), offsetSize);
      list += object;
    }
    const std::uint64_t tableStart = list.size();
    list += table;
    list += std::string(6, '\0');
    list += bigEndian(wrongOffsetSize.value_or(offsetSize), 1);
    list += bigEndian(wrongReferenceSize.value_or(referenceSize), 1);
    list += bigEndian(wrongObjectCount.value_or(objects.size()), 8);
    list += bigEndian(topObject, 8);
    return list + bigEndian(wrongTableOffset.value_or(tableStart), 8);
  }

  static std::string bigEndian(std::uint64_t value, unsigned size) {
    std::string result(size, '\0');
    for (unsigned i = 0; i < size && i < 8; ++i) result[size - 1 - i] = static_cast<char>(value >> (8 * i));
    return result;
  }
};

// Returns a list whose only object is `object`.
inline std::string binaryOf(const std::string& object) {
  return BinaryList{.objects = {object}}.build();
}

}  // namespace property_list_support
