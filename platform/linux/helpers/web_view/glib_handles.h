#pragma once

#include <glib-object.h>
#include <memory>
#include <utility>

namespace helpers {

// One reference to an object of the toolkit.
struct Unreference {
  void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename Type>
using ObjectPointer = std::unique_ptr<Type, Unreference>;

// Calls `handler` for each signal, with `data` as its last argument, as long as `object` lives.
template <typename Result, typename... Arguments>
void connect(gpointer object, const char* signal, Result (*handler)(Arguments...), gpointer data) {
  g_signal_connect_data(object, signal, reinterpret_cast<GCallback>(handler), data, nullptr,
                        GConnectFlags(0));
}

// Something that the main loop watches or waits for, until this object goes away. A callback that ends its
// own source by what it returns must release it first.
class EventSource {
 public:
  EventSource() = default;
  explicit EventSource(guint id) : id_(id) {}
  ~EventSource() { reset(); }
  EventSource(const EventSource&) = delete;
  EventSource& operator=(const EventSource&) = delete;

  void reset(guint id = 0) {
    const guint previous = std::exchange(id_, id);
    if (previous != 0) g_source_remove(previous);
  }

 private:
  guint id_ = 0;
};

}  // namespace helpers
