#include "tools/productserver/fault_control.h"

#include <optional>
#include <string>

#include "tools/common/escaped_text.h"

namespace tools {
namespace {

constexpr const char* kText = "text/plain; charset=utf-8";

// Returns an error text, empty on success.
std::string change(FaultList& faults, const std::string& path, const std::string& name) {
  if (!path.starts_with('/')) return "the path does not begin with a slash";
  if (name == "none") {
    faults.clear(path);
    return {};
  }
  const std::optional<FaultOrder> order = parseFaultOrder(name);
  if (!order) return "unknown fault " + quotedText(name);
  faults.set(path, *order);
  return {};
}

}  // namespace

void controlFaults(FaultList& faults, const httplib::Request& request, httplib::Response& response) {
  const bool changes = request.has_param("path") || request.has_param("name");
  const std::string wrong =
      changes ? change(faults, request.get_param_value("path"), request.get_param_value("name")) : "";
  if (wrong.empty()) return response.set_content(faults.text(), kText);
  response.status = 400;
  response.set_content(wrong + "\n", kText);
}

}  // namespace tools
