# Headers that most files include are compiled once for all targets that share their compile options. Each file includes what it
# uses all the same: the clang preset compiles without them.
set(standard_headers
  <algorithm> <array> <atomic> <cerrno> <charconv> <chrono> <cstddef> <cstdint> <cstdio> <cstdlib> <cstring> <ctime> <filesystem>
  <fstream> <functional> <map> <memory> <mutex> <optional> <span> <sstream> <string> <string_view> <system_error> <thread> <utility>
  <variant> <vector> <fcntl.h> <poll.h> <signal.h> <sys/socket.h> <sys/stat.h> <sys/wait.h> <unistd.h>)
set(toolkit_headers
  <QApplication> <QByteArray> <QDBusConnection> <QDBusMessage> <QDBusPendingCallWatcher> <QIcon> <QImage> <QKeyEvent> <QLabel>
  <QObject> <QPainter> <QPixmap> <QSocketNotifier> <QString> <QTimer> <QVariant> <QWidget>)

# precompiled_headers(NAME HEADERS headers... [LINK targets...])
function(precompiled_headers name)
  cmake_parse_arguments(arg "" "" "HEADERS;LINK" ${ARGN})
  set(empty "${CMAKE_BINARY_DIR}/empty.cpp")
  file(CONFIGURE OUTPUT "${empty}" CONTENT "")
  add_library(${name} OBJECT "${empty}")
  target_link_libraries(${name} PRIVATE ${arg_LINK})
  target_precompile_headers(${name} PRIVATE ${arg_HEADERS})
endfunction()

# has_headers_of(NAME targets...): the targets are compiled with NAME's headers.
function(has_headers_of name)
  foreach(target IN LISTS ARGN)
    target_precompile_headers(${target} REUSE_FROM ${name})
  endforeach()
endfunction()

# Without it gcc's precompiled headers keep ccache from storing anything.
if(CMAKE_CXX_COMPILER_LAUNCHER MATCHES "ccache" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-fpch-preprocess)
endif()

precompiled_headers(standard_headers HEADERS ${standard_headers})
