# The private desktop: an X server, a session bus, a window manager, and a panel that shows icons.

start_desktop() {
  # The panel must not search for an accessibility bus and a settings service, which do not exist here.
  export NO_AT_BRIDGE=1 GSETTINGS_BACKEND=memory
  start_screen
  start_bus
  start_window_manager
  # display exits with 1 even on success.
  display -size "${screen_width}x$screen_height" -window root gradient:'#a9c2d4-#5f809a' || true
  start_panel
}

# Starts a program and sets `answer` to the line that it writes to descriptor 3 when it is ready.
start_and_read() { # PROGRAM...
  mkfifo /tmp/answer
  "$@" 3>/tmp/answer >>"$desktop_output" 2>&1 &
  read -r -t "$wait_limit" answer </tmp/answer || fail "$1 did not start"
  rm /tmp/answer
}

start_screen() {
  start_and_read Xvfb -displayfd 3 -nolisten tcp -noreset -screen 0 "${screen_width}x${screen_height}x24"
  export DISPLAY=":$answer"
  log_line "desktop" "a screen of $screen_width by $screen_height"
}

start_bus() {
  start_and_read dbus-daemon --nofork --nopidfile --nosyslog --print-address=3 --config-file=packaging/run/session_bus.conf
  export DBUS_SESSION_BUS_ADDRESS=$answer
  log_line "desktop" "a session bus"
}

start_window_manager() {
  openbox --sm-disable >>"$desktop_output" 2>&1 &
  wait_for "the window manager" window_manager_answers
  log_line "desktop" "a window manager: openbox"
}

# Setting the desktop also triggers openbox, which handles requests received during its start only when more arrive.
window_manager_answers() { xdotool set_desktop 0 get_desktop >/dev/null 2>&1; }

start_panel() {
  panel=xfce4-panel
  command -v "$panel" >/dev/null || panel=trayer
  "start_$panel"
  log_line "desktop" "a panel: $panel"
}

start_xfce4-panel() {
  mkdir /tmp/services
  ln -s /usr/share/dbus-1/services/org.xfce.Xfconf.service /tmp/services
  cp -r packaging/run/config "$HOME/.config"
  xfce4-panel --disable-wm-check >>"$desktop_output" 2>&1 &
  wait_for "the panel to take icons" panel_takes_icons
}

panel_takes_icons() {
  dbus-send --print-reply --dest=org.kde.StatusNotifierWatcher /StatusNotifierWatcher \
    org.freedesktop.DBus.Properties.Get string:org.kde.StatusNotifierWatcher \
    string:IsStatusNotifierHostRegistered 2>/dev/null | grep -q "boolean true"
}

start_trayer() { run_trayer 0xf6f5f4; }

run_trayer() { # COLOUR
  trayer --edge top --align right --widthtype percent --width 100 --height "$panel_height" --SetDockType true \
    --transparent true --alpha 0 --tint "$1" --iconspacing 6 >>"$desktop_output" 2>&1 &
  trayer_process=$!
  wait_for "the panel" xdotool search --onlyvisible --class trayer >/dev/null
}

# Switches the desktop between light and dark: the panel's theme and the portal's setting.
paint_desktop() { # light|dark
  "paint_$panel" "$1"
  send_to_portal "$([ "$1" = dark ] && echo "set 1" || echo "set 2")"
  log_line "visit" "switched the desktop to $1"
}

# Waits because the panel recolours a symbolic icon only when it loads it.
paint_xfce4-panel() { # light|dark
  local before
  shoot
  before=$(colour_at $((screen_width / 2)),16)
  xfconf-query --channel xfce4-panel --property /panels/dark-mode --set "$([ "$1" = dark ] && echo true || echo false)"
  wait_for "the panel to turn $1" panel_has_other_colour "$before"
}

panel_has_other_colour() { # COLOUR
  shoot && [ "$(colour_at $((screen_width / 2)),16)" != "$1" ]
}

# trayer reads its colour only at start, so it is restarted; the icon moves to the new panel.
paint_trayer() { # light|dark
  kill "$trayer_process"
  run_trayer "$([ "$1" = dark ] && echo 0x353535 || echo 0xf6f5f4)"
}
