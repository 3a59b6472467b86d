#include "tools/tvldump/json_printer.h"

#include <cstdint>
#include <string>

#include "tools/common/json_text.h"

namespace tools {
namespace {

std::string member(const std::string& key, std::uint64_t value) {
  return "\"" + key + "\":" + std::to_string(value);
}

std::string member(const std::string& key, std::string_view bytes) {
  const std::string text = "\"" + key + "\":" + jsonString(bytes);
  return isUtf8(bytes) ? text : text + ",\"" + key + "Hex\":\"" + hexText(bytes) + "\"";
}

std::string versionMembers(const Version& version) {
  return member("version", version.bundle) + "," + member("fixedVersion", version.fixed);
}

// Returns the members of each kind of item, beginning with its type.
struct Members {
  std::string operator()(const Day& day) const { return R"("type":"day",)" + member("date", day.date); }
  std::string operator()(const Identifier& identifier) const {
    return R"("type":"identifier",)" + member("identifier", identifier.text);
  }
  std::string operator()(const OperatingSystem& system) const {
    return R"("type":"operatingSystem",)" + member("code", system.code);
  }
  std::string operator()(const Version& version) const {
    return R"("type":"version",)" + versionMembers(version);
  }
  std::string operator()(const Start& start) const {
    return R"("type":"start",)" + member("time", start.time) + "," + versionMembers(start.version);
  }
  std::string operator()(const End& end) const { return R"("type":"end",)" + member("time", end.time); }
  std::string operator()(const DeviceEvent& event) const {
    return R"("type":"deviceEvent",)" + member("dataCommand", event.dataCommand) + "," +
           member("time", event.time) + "," + member("name", event.name);
  }
  std::string operator()(const Transfer& transfer) const {
    return R"("type":"transfer",)" + member("kind", transfer.kind) + "," + member("size", transfer.size) +
           "," + member("name", transfer.name);
  }
};

}  // namespace

void JsonPrinter::begin() {
  stream_ << '[';
}

void JsonPrinter::end() {
  stream_ << (firstFile_ ? "]\n" : "\n]\n");
}

void JsonPrinter::beginFile(std::string_view name) {
  stream_ << (firstFile_ ? "\n{" : ",\n{") << member("file", name) << ",\"items\":[";
  firstFile_ = false;
  firstItem_ = true;
}

void JsonPrinter::item(const Item& item) {
  stream_ << (firstItem_ ? "\n{" : ",\n{") << member("offset", item.offset) << ','
          << std::visit(Members{}, item.content) << '}';
  firstItem_ = false;
}

void JsonPrinter::endFile(std::size_t size, const std::optional<Damage>& damage) {
  stream_ << (firstItem_ ? "]," : "\n],") << member("size", size) << ",\"damage\":";
  if (damage) {
    stream_ << '{' << member("offset", damage->offset) << ',' << member("reason", damage->reason) << "}}";
  } else {
    stream_ << "null}";
  }
}

}  // namespace tools
