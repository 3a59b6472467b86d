# The agent and the programs that it communicates with. Their output is added to the transcript line by line.

bundle=/tmp/Applications/Tovalin.app
agent_contents=$bundle/Contents/Resources/TovalinTray.app/Contents
outside_commands=/tmp/outside_commands
server_port=8090

start_log() {
  packaging/run/system_log /dev/log > >(log_system_log) 2>>"$desktop_output" &
  wait_for "the system log" test -S /dev/log
}

# Outside commands and the relay of the web view log their calls to the system log, so that all lines are in order.
log_system_log() {
  local identity text
  while read -r identity text; do
    case $identity in
      shell:) log_line "shell" "$text" ;;
      beacon:) log_line "beacon" "$text" ;;
      *) log_line "log" "$identity $text" ;;
    esac
  done
}

start_portal() {
  mkfifo /tmp/portal
  build/release/tests/harness/portal_double --value 2 </tmp/portal > >(log_portal) 2>>"$desktop_output" &
  exec 4>/tmp/portal
  wait_for_line "portal" "ready"
}

# Omits the portal's "ok" after each command.
log_portal() { sed --unbuffered '/^ok$/d' | log_lines "portal"; }

send_to_portal() { echo "$1" >&4; }

# Creates the records that a run of the agent on the previous day would have left.
create_yesterdays_records() {
  local folder=$HOME/.local/share/Tovalin yesterday
  mkdir -p "$folder"
  yesterday=$(date --date=yesterday +%Y-%m-%d)
  {
    printf 'TVLD%s\0\x26{00112233-4455-6677-8899-AABBCCDDEEFF}\x01\x44\x01\x051.0.0\x071.0.0.0' "$yesterday"
    printf '\x01\x051.0.0\x071.0.0.0\x02\x13%s 09:00:00\x03\x13%s 18:00:00' "$yesterday" "$yesterday"
  } >"$folder/Tovalin_${yesterday//-/_}.dat"
}

# A copy, because its helpers are wrapped to log their calls and its product server is the stand-in.
install_bundle() {
  mkdir -p "${bundle%/*}" "$outside_commands"
  cp -r build/Tovalin.app "$bundle"
  local helper
  for helper in launchctl open osascript; do
    wrap_with_log "$helper" "$PWD/build/${agent_contents#/tmp/Applications/}/Helpers/$helper" "$agent_contents/Helpers/$helper"
  done
  # The web browser of the private desktop.
  wrap_with_log x-www-browser /bin/true "$outside_commands/x-www-browser"
  wrap_with_log killall "$(command -v killall)" "$outside_commands/killall"
  relay_beacons "$agent_contents/Helpers/TovalinWebView"
  sed -i "s|^</dict>|<key>TovalinProductServer</key><string>http://127.0.0.1:$server_port</string></dict>|" \
    "$agent_contents/Info.plist"
}

# Creates a wrapper that logs its arguments and then runs the program.
wrap_with_log() { # NAME PROGRAM PLACE
  printf '#!/bin/sh\nlogger -t shell -- "%s $*"\nexec "%s" "$@"\n' "$1" "$2" >"$3"
  chmod +x "$3"
}

# Replaces the hidden web view by a relay that logs each address and passes it on.
relay_beacons() { # WEB_VIEW
  mv "$1" "$outside_commands/TovalinWebView"
  cp build/release/tests/harness/web_view_relay "$1"
}

start_server() { # OPTION ...
  build/release/tools/productserver --port "$server_port" --uploads "$results/uploads" "$@" tools/productserver_root > >(log_lines "server") 2>&1 &
  server=$!
  server_starts=$((${server_starts:-0} + 1))
  wait_for_line "server" "listening" "$server_starts"
}

stop_server() {
  kill "$server"
  wait_for "the server to end" has_ended "$server"
  log_line "visit" "stopped the server"
}

start_main_application() {
  mkfifo /tmp/main_application
  "$bundle/Contents/MacOS/Tovalin" --until -toff </tmp/main_application > >(log_main_application) 2>&1 &
  main_application=$!
  exec 5>/tmp/main_application
  wait_for_line "main app" "reading"
}

# Prints a usage record file line by line.
print_records() { # FILE
  build/release/tools/tvldump "$1" > >(log_lines "tvldump") 2>&1 || fail "$1 is damaged"
}

has_archive() { compgen -G "$HOME/Desktop/tovalinlog_*.zip" >/dev/null; }

has_upload() { compgen -G "$results/uploads/*.dat" >/dev/null; }

yesterdays_records_are_gone() { [ -z "$(find "$HOME/.local/share/Tovalin" -name "*.dat" ! -name "Tovalin_$(date +%Y_%m_%d).dat")" ]; }

# Makes the main application send a request to the agent: "access on", "loading off" ...
ask_agent() { echo "$1" >&5; }

# Omits the time before each message.
log_main_application() { sed --unbuffered -e 's/^[0-9:.]*  "/read "/' -e 's/^[0-9:.]*  sent/sent/' | log_lines "main app"; }

start_agent() {
  log_line "visit" "starts the agent"
  PATH="$outside_commands:$PATH" "$agent_contents/MacOS/TovalinTray" > >(log_lines "agent") 2>&1 &
  agent=$!
}
