// Input: a property list in one of its three formats. The result must respect the limits.

#include "platform/property_list.h"

#include <algorithm>
#include <string>

#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"

namespace {

using fuzz::require;
using platform::PropertyList;

struct Cost {
  std::size_t objects = 0;
  std::size_t bytes = 0;
  std::size_t depth = 0;
};

void addCost(const PropertyList& list, std::size_t depth, Cost& cost);

void addEntries(const PropertyList::Dictionary& dictionary, std::size_t depth, Cost& cost) {
  for (const auto& [key, value] : dictionary.entries()) {
    ++cost.objects;
    cost.bytes += key.size();
    addCost(value, depth, cost);
  }
}

void addCost(const PropertyList& list, std::size_t depth, Cost& cost) {
  ++cost.objects;
  if (const auto* text = list.as<std::string>()) cost.bytes += text->size();
  if (const auto* data = list.as<PropertyList::Data>()) cost.bytes += data->size();
  const auto* array = list.as<PropertyList::Array>();
  const auto* dictionary = list.as<PropertyList::Dictionary>();
  if (array == nullptr && dictionary == nullptr) return;
  cost.depth = std::max(cost.depth, depth + 1);
  if (dictionary != nullptr) return addEntries(*dictionary, depth + 1, cost);
  for (const PropertyList& item : *array) addCost(item, depth + 1, cost);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto list = platform::parsePropertyList(std::as_bytes(std::span(data, size)));
  if (!list) return 0;
  Cost cost;
  addCost(*list, 0, cost);
  require(cost.objects <= platform::propertyListMaxObjects, "the objects are within the limit");
  require(cost.bytes <= platform::propertyListMaxBytes, "the bytes are within the limit");
  require(cost.depth <= platform::propertyListMaxDepth, "the depth is within the limit");
  return 0;
}
