#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "platform/button.h"
#include "platform/text_field.h"
#include "platform/text_view.h"
#include "platform/window.h"

// The support window as its numbers lay it out, with contents of the test's own.
struct SupportLayout {
  explicit SupportLayout(bool online = true);
  SupportLayout(const SupportLayout&) = delete;
  SupportLayout& operator=(const SupportLayout&) = delete;

  std::shared_ptr<platform::Window> window;
  std::shared_ptr<platform::Button> update, faq, log;         // in a row from the left
  std::shared_ptr<platform::TextView> firstLink, secondLink;  // only when online
  std::shared_ptr<platform::TextView> description;            // only when not
  std::vector<std::string> clicks;                            // titles of the buttons that acted

 private:
  void addNotice(bool online);
};
