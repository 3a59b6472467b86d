#include "tools/productserver/upload_folder.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace tools {
namespace {

namespace fs = std::filesystem;

unsigned numberOf(const std::string& name) {
  unsigned number = 0;
  const char* const end = name.data() + name.size();
  const auto [rest, error] = std::from_chars(name.data(), end, number);
  return error == std::errc() && rest != end && *rest == '_' ? number : 0;
}

unsigned highestNumberIn(const fs::path& folder) {
  unsigned highest = 0;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    highest = std::max(highest, numberOf(entry->path().filename().string()));
  }
  return highest;
}

std::string fourDigits(unsigned number) {
  const std::string digits = std::to_string(number);
  return std::string(4 - std::min<std::size_t>(4, digits.size()), '0') + digits;
}

char harmless(char letter) {
  constexpr std::string_view kHarmless = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.-_";
  return kHarmless.find(letter) == kHarmless.npos ? '_' : letter;
}

}  // namespace

std::string safeFileName(std::string_view clientFileName) {
  constexpr std::size_t kMaxLength = 100;
  std::string name(clientFileName.substr(clientFileName.find_last_of("/\\") + 1).substr(0, kMaxLength));
  std::transform(name.begin(), name.end(), name.begin(), harmless);
  return name.empty() ? "unnamed" : name;
}

std::unique_ptr<UploadFolder> UploadFolder::open(const std::string& path) {
  std::error_code error;
  fs::create_directories(path, error);
  if (!fs::is_directory(path, error)) return nullptr;
  return std::unique_ptr<UploadFolder>(new UploadFolder(path, highestNumberIn(path)));
}

std::optional<std::string> UploadFolder::keep(std::string_view clientFileName, std::string_view data) {
  const std::string number = fourDigits(++number_);
  const std::string name = number + "_" + safeFileName(clientFileName);
  const std::string unfinished = path_ + "/." + number + ".part";
  std::ofstream stream(unfinished, std::ios::binary);
  stream.write(data.data(), static_cast<std::streamsize>(data.size()));
  stream.close();
  if (!stream || std::rename(unfinished.c_str(), (path_ + "/" + name).c_str()) != 0) return std::nullopt;
  return name;
}

}  // namespace tools
