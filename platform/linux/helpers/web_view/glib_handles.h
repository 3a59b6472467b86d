#pragma once

#include <glib-object.h>
#include <memory>
#include <utility>

namespace helpers {

// Owns one reference to a GObject.
struct Unreference {
  void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename Type>
using ObjectPointer = std::unique_ptr<Type, Unreference>;

// Connects `handler` to a signal, with `data` as its last argument, for the lifetime of `object`.
template <typename Result, typename... Arguments>
void connect(gpointer object, const char* signal, Result (*handler)(Arguments...), gpointer data) {
  g_signal_connect_data(object, signal, reinterpret_cast<GCallback>(handler), data, nullptr,
                        GConnectFlags(0));
}

// Owns a GLib event source and removes it on destruction. A callback that returns G_SOURCE_REMOVE must
// release its source first.
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
