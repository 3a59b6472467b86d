# Frequently included headers are compiled once for all targets with the same compile options. Each file must nevertheless include
# what it uses: the clang preset compiles without precompiled headers.
set(standard_headers
  <algorithm> <array> <atomic> <cerrno> <charconv> <chrono> <cstddef> <cstdint> <cstdio> <cstdlib> <cstring> <ctime> <filesystem>
  <fstream> <functional> <map> <memory> <mutex> <optional> <span> <sstream> <string> <string_view> <system_error> <thread> <utility>
  <variant> <vector> <fcntl.h> <poll.h> <signal.h> <sys/socket.h> <sys/stat.h> <sys/wait.h> <unistd.h>)
set(qt_headers
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

# has_headers_of(NAME targets...): compiles the targets with NAME's precompiled headers.
function(has_headers_of name)
  foreach(target IN LISTS ARGN)
    target_precompile_headers(${target} REUSE_FROM ${name})
  endforeach()
endfunction()

# Without this option, ccache cannot store compilations that use gcc's precompiled headers.
if(CMAKE_CXX_COMPILER_LAUNCHER MATCHES "ccache" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-fpch-preprocess)
endif()

precompiled_headers(standard_headers HEADERS ${standard_headers})
