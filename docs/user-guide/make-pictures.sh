#!/usr/bin/env bash
# Makes the guide's pictures anew: ./make-pictures.sh, after ./run has built the program.
# Needs the packages that tools/pictures.sh names.
set -eu
here=$(dirname "$(readlink -f "$0")")
root=$(readlink -f "$here/../..")
pictures=$here/pictures
# shellcheck source=../../tools/pictures.sh
. "$root/tools/pictures.sh"

if [ "${1-}" != inside ]; then
    furnish() { prefs MainHeight 300 ViewHeight 260; }
    in_display "$here/make-pictures.sh" inside
    exit
fi

openbox 2>/dev/null &
sleep 1

start demo-dual.dsd
picture main-window
xdotool mousemove --window "$main" 60 60 click 1 key F2
picture rename
xdotool key Escape
sleep 0.3
from_the_end 5
picture file-menu
xdotool key Return
picture addresses
stop

start demo-basic.ssd
picture one-side
stop

# view NAME TITLE KEY...: the view window of that title, opened by keys from the File menu on.
view() {
    local name=$1 title=$2 shown
    shift 2
    menu "$@" Return
    shown=$(window "$title")
    take "$name" "$shown"
    xdotool windowactivate --sync "$shown" key ctrl+w
    sleep 0.3
}

start demo-text.ssd
xdotool key Down Down Down
view view-text "View File"
stop

start demo-code.ssd
view view-disassembly "Disassemble File" Down Down
xdotool key Down Down
view view-hex "View File" Down Down Down
stop

start demo-basic.ssd
xdotool key Down Down Down
view view-marks "View File"
xdotool key Down
view view-basic "View File" Down
stop

start demo-wordwise.ssd
xdotool key Down Down Down Down
view view-wordwise "View File" Down Down Down Down
stop

start demo-cat.ssd
view view-cat "^[*]CAT" Left Down Down Down Down Down Down
stop
