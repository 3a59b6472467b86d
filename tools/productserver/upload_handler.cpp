#include "tools/productserver/upload_handler.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "tools/common/escaped_text.h"
#include "tools/productserver/http_server.h"

namespace tools {

UploadHandler::UploadHandler(UploadFolder* folder, LogLine log) : folder_(folder), log_(std::move(log)) {}

void UploadHandler::operator()(const httplib::Request& request, httplib::Response& response,
                               const httplib::ContentReader& read) const {
  std::string body;
  const bool complete = read([&body](const char* data, std::size_t size) {
    body.append(data, size);
    return true;
  });
  if (!complete) {
    const std::string after = "aborted after " + std::to_string(body.size()) + " bytes";
    return refuse(request.path, 400, after, response);
  }
  const auto form = parseFormData(request.get_header_value(kFormTypeHeader), body);
  if (const auto* error = std::get_if<FormError>(&form))
    return refuse(request.path, 400, error->reason, response);
  take(request.path, std::get<std::vector<FormPart>>(form), response);
}

void UploadHandler::take(const std::string& path, const std::vector<FormPart>& parts,
                         httplib::Response& response) const {
  const auto isFile = [](const FormPart& part) { return part.fileName.has_value(); };
  if (std::none_of(parts.begin(), parts.end(), isFile))
    return refuse(path, 400, "the form contains no file", response);
  response.set_content("", "text/plain; charset=utf-8");
  for (const FormPart& part : parts) {
    if (isFile(part) && !takeFile(path, part, response))
      return refuse(path, 500, "the file cannot be stored", response);
  }
}

bool UploadHandler::takeFile(const std::string& path, const FormPart& part,
                             httplib::Response& response) const {
  std::string storedAs;
  if (folder_ != nullptr) {
    const std::optional<std::string> name = folder_->keep(*part.fileName, part.data);
    if (!name) return false;
    storedAs = " as " + *name;
  }
  const std::string size = std::to_string(part.data.size()) + " bytes";
  log_("upload " + escapedText(path) + "  field " + quotedText(part.name) + "  file " +
       quotedText(*part.fileName) + "  " + size + storedAs);
  response.body += "The server took " + quotedText(*part.fileName) + ", " + size + ".\n";
  return true;
}

void UploadHandler::refuse(const std::string& path, int status, const std::string& reason,
                           httplib::Response& response) const {
  log_("upload " + escapedText(path) + "  refused: " + reason);
  response.status = status;
  response.set_content("The server refused the upload: " + reason + ".\n", "text/plain; charset=utf-8");
}

}  // namespace tools
