set(TOVALIN_PRODUCT_SERVER "https://www.tovalin.example" CACHE STRING "The product server's origin")
set(TOVALIN_TEST_UPLOAD_SERVER "http://test.tovalin.example" CACHE STRING "The test upload server's origin")

# The product folders. They do not link Qt and use the operating system only through platform/*.h.
add_library(tovalin_core STATIC
  app/beacon.cpp
  app/beacon_methods.cpp
  app/bundle_watch.cpp
  app/command_line.cpp
  app/delegate.cpp
  app/globals.cpp
  app/launch.cpp
  app/launch_rules.cpp
  app/link_addresses.cpp
  app/links.cpp
  app/registration.cpp
  app/status_menu.cpp
  app/status_rules.cpp
  ipc/command_pipe.cpp
  ipc/notice_backlog.cpp
  ipc/notice_calls.cpp
  ipc/notification_commands.cpp
  ipc/notification_listener.cpp
  ipc/notification_pipe.cpp
  ipc/readable.cpp
  notices/clickable_image_view.cpp
  notices/image_resize.cpp
  notices/notice_methods.cpp
  notices/notice_window.cpp
  support/address.cpp
  support/log_collection.cpp
  support/log_rules.cpp
  support/server_content.cpp
  support/server_fetch.cpp
  support/server_notice.cpp
  support/support_controls.cpp
  support/support_window.cpp
  support/updater_folder.cpp
  support/version_check.cpp
  support/version_rules.cpp
  usage/application_directory.cpp
  usage/bundle_version.cpp
  usage/collect_message.cpp
  usage/console_text.cpp
  usage/file_bytes.cpp
  usage/installation_identity.cpp
  usage/os_code.cpp
  usage/private_files.cpp
  usage/property_file.cpp
  usage/record_bytes.cpp
  usage/server_addresses.cpp
  usage/server_option.cpp
  usage/upload_files.cpp
  usage/upload_rules.cpp
  usage/usage_file.cpp
  usage/usage_lock.cpp
  usage/usage_record.cpp
  usage/usage_upload.cpp
  usage/version_text.cpp
)
target_compile_definitions(tovalin_core PRIVATE
  TOVALIN_PRODUCT_SERVER="${TOVALIN_PRODUCT_SERVER}"
  TOVALIN_TEST_UPLOAD_SERVER="${TOVALIN_TEST_UPLOAD_SERVER}"
)
compiled_alone(app/registration.cpp ipc/command_pipe.cpp usage/bundle_version.cpp usage/server_addresses.cpp)
has_headers_of(standard_headers tovalin_core)
set_target_properties(tovalin_core PROPERTIES LINK_INTERFACE_MULTIPLICITY 3)
# The dependency is mutual: the core uses the platform, and the platform's ApplicationMain calls applicationRegistration of the
# core.
target_link_libraries(tovalin_core PUBLIC tovalin_platform PRIVATE tovalin_utf8cpp)
target_link_libraries(tovalin_platform PUBLIC tovalin_core)

add_executable(TovalinTray app/main.cpp)
target_link_libraries(TovalinTray PRIVATE tovalin_core tovalin_platform)
