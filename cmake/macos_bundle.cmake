# Assembles the agent's bundle on macOS in a folder with the structure of the main application's bundle.
string(REGEX REPLACE "^[a-z]+://([^/:]+).*" "\\1" TOVALIN_PRODUCT_SERVER_HOST "${TOVALIN_PRODUCT_SERVER}")
configure_file(packaging/macos/Info.plist.in "${CMAKE_CURRENT_BINARY_DIR}/Info.plist" @ONLY)

set(agent_contents "${TOVALIN_BUNDLE_ROOT}/Tovalin.app/Contents/Resources/TovalinTray.app/Contents")
set_target_properties(TovalinTray PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${agent_contents}/MacOS")
add_custom_target(bundle ALL
  COMMAND "${CMAKE_COMMAND}" -E copy_directory "${PROJECT_SOURCE_DIR}/resources/images" "${agent_contents}/Resources"
  COMMAND "${CMAKE_COMMAND}" -E copy "${CMAKE_CURRENT_BINARY_DIR}/Info.plist" "${agent_contents}/Info.plist"
  DEPENDS TovalinTray VERBATIM)

# cmake --install BUILD --prefix PATH/Tovalin.app installs the agent into the bundle of a main application.
set(installed_agent Contents/Resources/TovalinTray.app/Contents)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/Info.plist" DESTINATION ${installed_agent})
install(DIRECTORY resources/images/ DESTINATION ${installed_agent}/Resources FILES_MATCHING PATTERN "*.png")
install(TARGETS TovalinTray RUNTIME DESTINATION ${installed_agent}/MacOS)
