#!/usr/bin/env bash
# Makes the guide's pictures anew: ./make-pictures.sh, after ./run has built the program.
# Needs Debian's xvfb, xauth, openbox, xdotool, imagemagick and pngquant.
set -eu
here=$(dirname "$(readlink -f "$0")")
root=$here/../..

if [ "${1-}" != inside ]; then
    home=$(mktemp -d)
    trap 'rm -rf "$home"' EXIT
    cp "$root"/tests/data/discs/*.?sd "$home"
    mkdir "$home/config"
    cat >"$home/config/Quoravel.pref" <<'PREF'
<?xml version="1.0" encoding="UTF-8"?>
<xmldict version="1.1">
<key>MainHeight</key>
<integer>300</integer>
</xmldict>
PREF
    cd "$home"
    HOME=$home XDG_CONFIG_HOME=$home/config \
        xvfb-run -a -s "-screen 0 1280x900x24" "$here/make-pictures.sh" inside
    exit
fi

openbox 2>/dev/null &
sleep 1

# picture NAME [WINDOW]: the part of the screen that a window, or else the main one, takes with its frame.
# The place that xdotool tells counts the frame twice.
picture() {
    sleep 0.6
    eval "$(xdotool getwindowgeometry --shell "${2-$main}")"
    import -window root -crop "$((WIDTH + 4))x$((HEIGHT + 24))+$((X - 3))+$((Y - 40))" +repage \
        "$here/pictures/$1.png"
    pngquant --force --ext .png 32 "$here/pictures/$1.png"
}

# start IMAGE: the program with a disc, its window active.
start() {
    "$root/build/release/src/quoravel" "$1" 2>/dev/null &
    program=$!
    main=$(xdotool search --sync --onlyvisible --name "Quoravel - $1")
    xdotool windowactivate --sync "$main"
    sleep 0.5
}

stop() {
    kill "$program"
    wait "$program" 2>/dev/null || true
}

# The File menu's item that stands N lines from its end.
from_the_end() {
    xdotool key alt+f
    sleep 0.3
    for ((i = 0; i < $1; i++)); do xdotool key Up; done
}

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

# view NAME TITLE MENU-KEYS...: the view window of that title, opened through the menus by keys.
view() {
    local name=$1 title=$2 window
    shift 2
    xdotool windowactivate --sync "$main" key --delay 100 alt+f "$@" Return
    window=$(xdotool search --sync --onlyvisible --name "$title")
    sleep 0.6
    import -frame -window "$window" "$here/pictures/$name.png"
    pngquant --force --ext .png 32 "$here/pictures/$name.png"
    xdotool windowactivate --sync "$window" key ctrl+w
    sleep 0.3
}

cat >"$HOME/config/Quoravel.pref" <<'PREF'
<?xml version="1.0" encoding="UTF-8"?>
<xmldict version="1.1">
<key>MainHeight</key>
<integer>300</integer>
<key>ViewHeight</key>
<integer>260</integer>
</xmldict>
PREF

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
