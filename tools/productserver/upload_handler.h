#pragma once

#include <httplib.h>

#include "tools/productserver/form_data.h"
#include "tools/productserver/request_log.h"
#include "tools/productserver/upload_folder.h"

namespace tools {

// Handles requests that upload files as forms, and logs each. Thread-safe.
class UploadHandler {
 public:
  // Stores the files in `folder`; without a folder they are only logged.
  UploadHandler(UploadFolder* folder, LogLine log);

  void operator()(const httplib::Request& request, httplib::Response& response,
                  const httplib::ContentReader& read) const;

 private:
  void take(const std::string& path, const std::vector<FormPart>& parts, httplib::Response& response) const;
  [[nodiscard]] bool takeFile(const std::string& path, const FormPart& part,
                              httplib::Response& response) const;
  void refuse(const std::string& path, int status, const std::string& reason,
              httplib::Response& response) const;

  UploadFolder* folder_;
  LogLine log_;
};

}  // namespace tools
