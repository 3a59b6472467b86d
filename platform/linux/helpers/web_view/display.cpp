#include "platform/linux/helpers/web_view/display.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cctype>
#include <cstdint>
#include <string_view>
#include <wayland-server.h>

#include "platform/linux/helpers/web_view/thread_start.h"

namespace helpers {
namespace {

constexpr const char* socketName = "wayland-0";

// GTK requires xdg_wm_base. A view that is never shown sends no requests to it, so these need no types.
constexpr std::array<wl_message, 4> shellRequests{{{"destroy", "", nullptr},
                                                   {"create_positioner", "", nullptr},
                                                   {"get_xdg_surface", "", nullptr},
                                                   {"pong", "u", nullptr}}};
constexpr wl_interface shell{"xdg_wm_base", 1, shellRequests.size(), shellRequests.data(), 0, nullptr};

int ignoreRequest(const void* data, void* target, std::uint32_t opcode, const wl_message* request,
                  wl_argument* arguments);

wl_resource* addObject(wl_client* client, const wl_interface* type, int version, std::uint32_t id) {
  wl_resource* object = wl_resource_create(client, type, version, id);
  if (object == nullptr) {
    wl_client_post_no_memory(client);
  } else {
    wl_resource_set_dispatcher(object, ignoreRequest, nullptr, nullptr, nullptr);
  }
  return object;
}

// Creates the objects that a request asks for, so that later requests have a target. Ignores the rest.
int ignoreRequest(const void*, void* target, std::uint32_t, const wl_message* request,
                  wl_argument* arguments) {
  auto* object = static_cast<wl_resource*>(target);
  int index = 0;
  for (const char kind : std::string_view(request->signature)) {
    if (kind == '?' || std::isdigit(static_cast<unsigned char>(kind)) != 0) continue;
    if (kind == 'n') {
      addObject(wl_resource_get_client(object), request->types[index], wl_resource_get_version(object),
                arguments[index].n);
    }
    if (kind == 'h') ::close(arguments[index].h);
    ++index;
  }
  const std::string_view name = request->name;
  if (name == "destroy" || name == "release") wl_resource_destroy(object);
  return 0;
}

void describeScreen(wl_resource* screen) {
  wl_output_send_geometry(screen, 0, 0, 340, 190, WL_OUTPUT_SUBPIXEL_UNKNOWN, "", "",
                          WL_OUTPUT_TRANSFORM_NORMAL);
  wl_output_send_mode(screen, WL_OUTPUT_MODE_CURRENT | WL_OUTPUT_MODE_PREFERRED, 1280, 720, 60000);
  wl_output_send_scale(screen, 1);
  wl_output_send_done(screen);
}

void bindGlobal(wl_client* client, void* type, std::uint32_t version, std::uint32_t id) {
  const auto* interface = static_cast<const wl_interface*>(type);
  wl_resource* object = addObject(client, interface, static_cast<int>(version), id);
  if (object == nullptr) return;
  if (interface == &wl_output_interface) describeScreen(object);
  if (interface == &wl_seat_interface) wl_seat_send_capabilities(object, 0);
}

void offer(wl_display* display, const wl_interface& type, int version) {
  wl_global_create(display, &type, version, const_cast<wl_interface*>(&type), bindGlobal);
}

int stopServing(int, std::uint32_t, void* display) {
  wl_display_terminate(static_cast<wl_display*>(display));
  return 0;
}

}  // namespace

void EmptyDisplay::Destroy::operator()(wl_display* display) const {
  wl_display_destroy_clients(display);
  wl_display_destroy(display);
}

EmptyDisplay::EmptyDisplay() : display_(wl_display_create()), stop_(::eventfd(0, EFD_CLOEXEC)) {
  if (!display_ || !stop_.valid()) return;
  offer(display_.get(), wl_compositor_interface, 4);
  offer(display_.get(), wl_shm_interface, 1);
  offer(display_.get(), wl_output_interface, 2);
  offer(display_.get(), wl_data_device_manager_interface, 3);
  offer(display_.get(), wl_seat_interface, 4);
  offer(display_.get(), shell, 1);
  wl_event_loop_add_fd(wl_display_get_event_loop(display_.get()), stop_.get(), WL_EVENT_READABLE, stopServing,
                       display_.get());
  if (wl_display_add_socket(display_.get(), socketName) != 0) return;
  thread_ = startThread([this] { wl_display_run(display_.get()); });
  if (thread_.joinable()) name_ = socketName;
}

EmptyDisplay::~EmptyDisplay() {
  if (!thread_.joinable()) return;
  ::eventfd_write(stop_.get(), 1);
  thread_.join();
}

}  // namespace helpers
