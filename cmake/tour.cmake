# Programs for ./run besides the bundle and the tools. Tests use portal_double and web_view_relay, too.
find_package(Qt6 6.4 REQUIRED COMPONENTS DBus)
set(bus_doubles "${PROJECT_SOURCE_DIR}/tests/harness/bus_doubles")

add_executable(portal_double
  "${bus_doubles}/command_lines.cpp"
  "${bus_doubles}/portal_main.cpp"
  "${bus_doubles}/settings_portal_service.cpp"
)
set_target_properties(portal_double PROPERTIES AUTOMOC ON)
target_link_libraries(portal_double PRIVATE Qt6::DBus)

add_executable(web_view_relay "${PROJECT_SOURCE_DIR}/tests/harness/servers/web_view_relay.cpp")
set_target_properties(portal_double web_view_relay PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests/harness")

add_custom_target(tour)
add_dependencies(tour bundle portal_double productserver tvldump web_view_relay)
