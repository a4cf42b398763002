#!/usr/bin/env bash
# Takes a picture of every window, to be looked at: tools/look-at-windows.sh FOLDER [dark] [SCALE [FONT-SIZE]]
# after ./run and ./test have built things. As root it shows the windows of the link too, with the
# emulated micro at the other end; its line becomes /dev/ttyUSB77 meanwhile.
# Colours and font come by way of a KDE desktop's settings, which Qt reads without any of KDE.
set -eu
root=$(readlink -f "$(dirname "$0")/..")
# shellcheck source=tools/pictures.sh
. "$root/tools/pictures.sh"
port=/dev/ttyUSB77

if [ "${1-}" != inside ]; then
    pictures=$(mkdir -p "$1" && readlink -f "$1")
    shift
    dark=false
    ! [ "${1-}" = dark ] || { dark=true && shift; }
    export QT_SCALE_FACTOR=${1:-1} XDG_CURRENT_DESKTOP=KDE KDE_SESSION_VERSION=5 pictures
    screen=2600x1900

    furnish() {
        prefs MainHeight 300 ViewHeight 260 TraceHeight 240 CLIHeight 240
        printf '[General]\nfont=DejaVu Sans,%s,-1,5,50,0,0,0,0,0\n' "${font_size:-10}" \
            >"$home/config/kdeglobals"
        ! $dark || cat >>"$home/config/kdeglobals" <<'DARK'
[Colors:Window]
BackgroundNormal=42,46,50
ForegroundNormal=252,252,252
ForegroundInactive=161,169,177
[Colors:Button]
BackgroundNormal=49,54,59
ForegroundNormal=252,252,252
ForegroundInactive=161,169,177
[Colors:View]
BackgroundNormal=27,30,32
BackgroundAlternate=35,38,41
ForegroundNormal=252,252,252
ForegroundLink=29,153,243
ForegroundVisited=155,89,182
ForegroundInactive=161,169,177
[Colors:Selection]
BackgroundNormal=61,174,233
ForegroundNormal=252,252,252
[Colors:Tooltip]
BackgroundNormal=49,54,59
ForegroundNormal=252,252,252
DARK
        collection 15
    }
    clean_up() { [ "$(readlink "$port")" != "${home:-?}/line" ] || rm -f "$port"; }
    font_size=${2-}
    in_display "$(readlink -f "$0")" inside
    exit
fi

trap 'import -window root "$pictures/failed.png"' ERR
openbox 2>/dev/null &
sleep 1

shrink() { :; } # pictures to look at keep all their colours

# shot NAME TITLE: a window of that title. escape NAME TITLE: the same, then Escape.
shot() {
    local seen
    seen=$(window "$2")
    sleep 0.3
    import -window "$seen" "$pictures/$1.png"
}

escape() {
    shot "$@"
    xdotool key Escape
    sleep 0.3
}

# closing NAME TITLE: a window of that title, then Ctrl+W.
closing() {
    shot "$@"
    xdotool key ctrl+w
    sleep 0.3
}

start demo-dual.dsd
picture main
xdotool key Tab Down shift+Down
picture main-second-list
xdotool key Menu
picture context-menu
xdotool key Escape F2
picture rename
xdotool key Escape
for bar in disc options tavrilo help; do
    case $bar in disc) menu Left ;; options) menu Right ;; tavrilo) menu Right Right Up Up Right ;; help) menu Left Left ;; esac
    picture "menu-$bar"
    xdotool key Escape Escape Escape
done
xdotool key ctrl+t
escape title "Set Disc Title"
xdotool key ctrl+b
escape boot "Set Boot Attributes"
from_the_end 5
xdotool key Return
shot addresses "Set File Addresses"
xdotool key x Return
escape box "^Quoravel$"
xdotool key Escape
menu Left Left Return
escape about "About Quoravel"
xdotool key ctrl+o
escape open-dialog "Open"
xdotool windowactivate --sync "$main" key ctrl+m
closing map "^Free"
menu Left Up Up Up Up Up Return
closing cat "^[*]CAT"

if [ -n "$(command -v node)" ] && [ "$(id -u)" = 0 ] && [ ! -e "$port" ] && [ -d "$root/tests/beeb/node_modules" ]; then
    coproc micro { exec node "$root/tests/beeb/machine.mjs" --tavrilo --pty; }
    read -r _ line <&"${micro[0]}"
    ln -s "$line" "$HOME/line"
    ln -s "$HOME/line" "$port"
    printf 'insert 0 %s\n' "$HOME/demo-basic.ssd" >&"${micro[1]}"
    menu Right Right Down Down Return
    console=$(window "[*] Commands")
    xdotool windowactivate --sync "$console" type CAT
    xdotool key Return
    sleep 5
    closing console "[*] Commands"
    menu Right Right Return
    escape serial "Select Serial Port"
    menu Right Right Down Return
    escape first "Send Basic Program"
    menu Right Right Up Right Return
    trace=$(window "^Trace")
    menu Right Right Up Up Up Right Return
    sleep 1
    xdotool key ctrl+a type in.ssd
    xdotool key Return
    sleep 9
    escape receive "Receive Disc Image"
    sleep 4
    xdotool windowactivate --sync "$trace"
    closing trace "^Trace"
fi

menu Left Up Return
sleep 1
xdotool key ctrl+a type "$HOME/collection"
xdotool key Return
sleep 1
xdotool key Return
escape progress "[*]EX Progress"
stop

# view NAME MENU-KEY...: a view window of the chosen file; it stays.
view() {
    local name=$1
    shift
    menu "$@" Return
    shot "$name" "View File|Disassemble"
}

start demo-basic.ssd
picture main-one-side
xdotool key Down Down Down Down
view basic Down
xdotool key ctrl+f
sleep 0.5
xdotool type -- GOTO
escape find "^Find$"
view hex Down Down Down
xdotool key shift+Down shift+Down shift+Down shift+Down
shot hex-selected "View File"
xdotool key ctrl+p
escape print "Print"
stop
start demo-code.ssd
view disassembly Down Down
stop
start demo-wordwise.ssd
xdotool key Down Down Down Down
view wordwise Down Down Down Down
stop
kill "$(jobs -p %openbox 2>/dev/null)" 2>/dev/null || true
