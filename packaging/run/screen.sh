# Examines and clicks on the private display. Works on screenshots, so that it does not depend on the panel.

screen_width=1000
screen_height=640
panel_height=32
# The end of the panel with the icons; the other end has a clock, which changes.
icon_area=300x$panel_height+$((screen_width - 300))+0
desktop_area=${screen_width}x$((screen_height - panel_height))+0+$panel_height

shot=/tmp/screen.ppm
empty_shot=/tmp/empty_screen.ppm
icon_x=0

shoot() { import -silent -window root "$shot"; }

# Succeeds if the screen equals the previous screenshot.
stands_still() {
  mv "$shot" "$shot.before" && shoot && cmp --silent "$shot" "$shot.before"
}

picture() { # NAME
  wait_for "the screen to stand still" stands_still
  convert "$shot" "$results/$1.png"
  log_line "picture" "$results/$1.png"
}

remember_empty_screen() {
  wait_for "the panel to be painted" panel_is_painted
  wait_for "the empty desktop to stand still" stands_still
  cp "$shot" "$empty_shot"
}

# The panel has a uniform colour; the background is a gradient.
panel_is_painted() {
  shoot || return 1
  [ "$(colour_at $((screen_width / 2)),1)" = "$(colour_at $((screen_width / 2)),$((panel_height - 4)))" ]
}

colour_at() { convert "$shot" -format "%[pixel:p{$1}]" info:; } # X,Y

# Succeeds if the panel shows the icon of this state, and stores the position in icon_x.
icon_is() { "icon_is_$panel" "$1"; } # NAME

# xfce4-panel recolours the symbolic icon that the agent names on the bus.
icon_is_xfce4-panel() { # NAME
  [ "$(named_icon)" = "tovalin-${1// /-}-symbolic" ] && panel_has_one_icon
}

named_icon() {
  local item
  item=$(property_on_bus org.kde.StatusNotifierWatcher /StatusNotifierWatcher RegisteredStatusNotifierItems) || return 1
  property_on_bus "${item%%/*}" /StatusNotifierItem IconName org.kde.StatusNotifierItem
}

# Prints the first string of the property's value.
property_on_bus() { # NAME PATH PROPERTY [INTERFACE]
  dbus-send --print-reply=literal --dest="$1" "$2" org.freedesktop.DBus.Properties.Get \
    string:"${4:-$1}" string:"$3" 2>/dev/null | grep -oE '[^][ ]+' | sed -n '/^variant$/d; /^array$/d; p' | head -n 1
}

panel_has_one_icon() {
  local width height left top
  shoot || return 1
  read -r width height left top < <(
    convert "$shot" -crop "$icon_area" +repage -fuzz 5% -trim -format '%w %h %X %Y\n' info: 2>/dev/null)
  [ "$width" -ge 12 ] && [ "$width" -le "$panel_height" ] && [ "$height" -ge 12 ] || return 1
  icon_x=$((screen_width - 300 + left + width / 2))
}

# trayer shows the agent's picture of this name.
icon_is_trayer() { # NAME
  local found
  shoot || return 1
  convert "$shot" -crop "$icon_area" +repage /tmp/panel.ppm
  convert "$agent_contents/Resources/$1.png" -background "$(colour_at $((screen_width / 2)),16)" \
    -flatten /tmp/icon.ppm
  found=$(compare -metric RMSE -subimage-search /tmp/panel.ppm /tmp/icon.ppm null: 2>&1 || true)
  [[ $found =~ \((0|0\.00[0-9]*|[0-9.]*e-[0-9]*)\)\ @\ ([0-9]+), ]] || return 1
  icon_x=$((screen_width - 300 + BASH_REMATCH[2] + 10))
}

wait_for_icon() { # NAME
  wait_for "the icon \"$1\" in the panel" icon_is "$1"
  log_line "screen" "the panel shows the icon \"$1\""
}

panel_is_empty() {
  shoot || return 1
  [ "$(compare -metric AE -extract "$icon_area" "$shot" "$empty_shot" null: 2>&1)" = 0 ]
}

notice_is_open() { xdotool search --onlyvisible --name '^Tovalin Notification$' >/dev/null; }

notice_is_closed() { ! notice_is_open; }

# Sets support_x and support_y, the upper left corner of the window's content.
support_window_is_open() {
  local found
  found=$(xwininfo -name 'Support Tovalin' 2>/dev/null) || return 1
  grep -q 'Map State: IsViewable' <<<"$found" || return 1
  support_x=$(sed -n 's/.*Absolute upper-left X: *//p' <<<"$found")
  support_y=$(sed -n 's/.*Absolute upper-left Y: *//p' <<<"$found")
}

support_window_is_closed() { ! support_window_is_open; }

click_in_support_window() { # WHAT X Y
  log_line "visit" "clicks $1"
  xdotool mousemove $((support_x + $2)) $((support_y + $3)) click 1
}

# A sheet darkens the part of the window that it does not cover.
sheet_is_up() {
  shoot || return 1
  [ "$(convert "$shot" -format "%[fx:p{$((support_x + 4)),$((support_y + 180))}.r<0.8]" info:)" = 1 ]
}

sheet_is_gone() { ! sheet_is_up; }

# Sets menu_left, menu_top, menu_width and menu_height. Ignores tooltips, which are smaller.
menu_is_open() {
  shoot || return 1
  read -r menu_width menu_height menu_left menu_top < <(
    convert \( "$empty_shot" "$shot" -crop "$desktop_area" +repage \) -compose difference -composite -threshold 1% \
      -trim -format '%w %h %X %Y\n' info: 2>/dev/null)
  menu_top=$((menu_top + panel_height))
  [ "$menu_width" -gt 100 ] && [ "$menu_height" -gt 100 ]
}

menu_is_closed() { ! menu_is_open; }

# Clicks the panel's lower edge, so that a menu opened at the pointer does not hide the panel.
open_menu() {
  xdotool mousemove "$icon_x" $((panel_height - 4)) click 3
  wait_for "the menu" menu_is_open
  log_line "visit" "clicked the icon: the menu is open"
}

point_at() { # first|last
  local y=$((menu_top + 12))
  [ "$1" = first ] || y=$((menu_top + menu_height - 12))
  xdotool mousemove $((menu_left + menu_width / 2)) "$y"
}

choose() { # first|last
  point_at "$1"
  log_line "visit" "clicks the menu's $1 item"
  xdotool click 1
  wait_for "the menu to close" menu_is_closed
}
