#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "tests/end_to_end/notices/notice_fixture.h"
#include "tests/harness/desktop/x_connection.h"

namespace {

using test_support::activeWindowOn;
using test_support::waitForWindow;
using test_support::waitUntil;
using test_support::windowNamed;
using test_support::XcbReply;
using test_support::XConnection;
using testing::ElementsAre;

// The real helper that activates the front application, and another program in front of the desktop when the
// notice opens.
class FrontApplication : public NoticeTest {
 protected:
  void SetUp() override {
    NoticeTest::SetUp();
    install("/tmp/Applications/Tovalin.app");
    placeRealHelper();
    launch();
    ASSERT_TRUE(program_.start({TOVALIN_SAMPLE_WINDOW_PROGRAM}, {.environment = environment_}));
    const auto front = waitForWindow(display_.name(), windowNamed("High"));
    ASSERT_TRUE(front && waitForWindow(display_.name(), windowNamed("Low")));
    front_ = front->id;
    runOnDisplay({"xdotool", "windowactivate", std::to_string(front_)});
    ASSERT_TRUE(becomesActive(front_));
    watchRequests();
  }

  [[nodiscard]] bool becomesActive(std::uint32_t window) const {
    return waitUntil([&] { return activeWindowOn(display_.name()) == window; });
  }

  // Returns the windows activated since the last call by requests whose source is the user, as those of the
  // helper.
  [[nodiscard]] std::vector<std::uint32_t> takeUsersActivations() {
    constexpr std::uint32_t inTheUsersName = 2;
    const xcb_atom_t activation = x_->atom("_NET_ACTIVE_WINDOW");
    std::vector<std::uint32_t> windows;
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(x_->get())}) {
      if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE) continue;
      xcb_client_message_event_t message;
      std::memcpy(&message, event.get(), sizeof message);
      if (message.type == activation && message.data.data32[0] == inTheUsersName)
        windows.push_back(message.window);
    }
    return windows;
  }

  std::uint32_t front_ = 0;

 private:
  void placeRealHelper() const {
    const char* const built = std::getenv("TOVALIN_BUNDLE_ROOT");
    if (built == nullptr) FAIL() << "TOVALIN_BUNDLE_ROOT is not set";
    const std::string helper = "/Contents/Helpers/osascript";
    std::filesystem::copy_file(
        std::string(built) + "/Tovalin.app/Contents/Resources/TovalinTray.app" + helper,
        bundle_ + "/Contents/Resources/TovalinTray.app" + helper,
        std::filesystem::copy_options::overwrite_existing);
  }

  void watchRequests() {
    x_ = std::make_unique<XConnection>(display_.name());
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(x_->get(), x_->root(), XCB_CW_EVENT_MASK, &events);
    x_->synchronize();
  }

  test_support::ChildProcess program_;
  std::unique_ptr<XConnection> x_;
};

TEST_F(FrontApplication, IsActivatedAfterLoadingNotice) {
  send("-neon");
  const auto notice = waitForWindow(display_.name(), isLoadingNotice);
  ASSERT_TRUE(notice && becomesActive(notice->id));
  ASSERT_THAT(takeUsersActivations(), ElementsAre());

  send("-neoff");
  EXPECT_TRUE(hides(isLoadingNotice));
  std::vector<std::uint32_t> asked;
  EXPECT_TRUE(waitUntil([&] { return !(asked = takeUsersActivations()).empty(); }));
  EXPECT_THAT(asked, ElementsAre(front_));
  EXPECT_TRUE(becomesActive(front_));
}

TEST_F(FrontApplication, IsNotActivatedAfterAccessNotice) {
  send("-non");
  const auto notice = waitForWindow(display_.name(), isAccessNotice);
  ASSERT_TRUE(notice && becomesActive(notice->id));
  send("-noff");
  EXPECT_TRUE(hides(isAccessNotice));
  EXPECT_TRUE(becomesActive(front_));
  // This notice is shown after the access notice has been handled completely.
  send("-neon");
  ASSERT_TRUE(shows(isLoadingNotice));
  EXPECT_THAT(takeUsersActivations(), ElementsAre());
}

}  // namespace
