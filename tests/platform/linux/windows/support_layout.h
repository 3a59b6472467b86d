#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "platform/button.h"
#include "platform/text_field.h"
#include "platform/text_view.h"
#include "platform/window.h"

// A window with the layout of the support window and contents of the test.
struct SupportLayout {
  explicit SupportLayout(bool online = true);
  SupportLayout(const SupportLayout&) = delete;
  SupportLayout& operator=(const SupportLayout&) = delete;

  std::shared_ptr<platform::Window> window;
  std::shared_ptr<platform::Button> update, faq, log;         // from left to right
  std::shared_ptr<platform::TextView> firstLink, secondLink;  // only when online
  std::shared_ptr<platform::TextView> description;            // only when offline
  std::vector<std::string> clicks;                            // titles of the buttons whose actions ran

 private:
  void addNotice(bool online);
};
