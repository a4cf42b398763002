#!/usr/bin/env bash
# Makes the pictures of the cable and of the listing anew, after ./run and ./test have built things:
# ./make-cable-pictures.sh, as root, since the emulated micro's line becomes /dev/ttyUSB77 meanwhile.
# Needs the packages that tools/pictures.sh names.
set -eu
here=$(dirname "$(readlink -f "$0")")
root=$(readlink -f "$here/../..")
pictures=$here/pictures
port=/dev/ttyUSB77 # a link, which stands among the first in the program's list
# shellcheck source=../../tools/pictures.sh
. "$root/tools/pictures.sh"

if [ "${1-}" != inside ]; then
    furnish() {
        prefs MainHeight 300 TraceHeight 240 CLIHeight 240
        collection 14 # enough that a listing takes a while
    }
    clean_up() { rm -f "$port"; }
    in_display "$here/make-cable-pictures.sh" inside
    exit
fi

openbox 2>/dev/null &
coproc micro {
    exec node "$root/tests/beeb/machine.mjs" --tavrilo --pictures --pty
}
read -r _ line <&"${micro[0]}"
ln -sf "$line" "$port"

# micro COMMAND...: has the emulated micro do something.
micro() {
    printf '%s\n' "$*" >&"${micro[1]}"
    read -r _ <&"${micro[0]}"
}

# micro_picture NAME: the micro's screen as it is now.
micro_picture() {
    micro picture "$HOME/micro.ppm"
    convert "$HOME/micro.ppm" "$pictures/micro-$1.png"
}

# choose KEY...: an item of the Tavrilo menu, by the keys that lead to it from its top.
choose() { menu Right Right "$@"; }

micro insert 0 "$HOME/demo-basic.ssd"
micro_picture waiting
start demo-dual.dsd

# First, as a Cancel anywhere silences it until a transfer starts.
choose Down Down Return
console=$(window "[*] Commands")
xdotool windowactivate --sync "$console" type "CAT"
xdotool key Return
sleep 5
take console "$console"
xdotool windowactivate --sync "$console" key ctrl+w
sleep 1

choose Return
take serial-port "$(window "Select Serial Port")"
xdotool key Escape
choose Down Return
take send-basic-program "$(window "Send Basic Program")"
xdotool key Escape
sleep 0.5

choose Down Down Down Down Down Right Return
trace=$(window "^Trace")
xdotool windowmove "$trace" 20 560
choose Down Down Down Right Return
sleep 1
xdotool key ctrl+a type "in.ssd"
xdotool key Return
receive=$(window "Receive Disc Image")
sleep 20
take receive "$receive"
take trace "$trace"
micro_picture receiving
xdotool windowactivate --sync "$receive" key Escape
sleep 8

menu Left Up Return
sleep 1
xdotool key ctrl+a type "$HOME/collection"
xdotool key Return
sleep 1
xdotool key Return
take ex-progress "$(window "[*]EX Progress")"
stop
micro quit || true
