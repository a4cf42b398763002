#!/usr/bin/env bash
# Makes the pictures of the cable and of the listing anew, after ./run and ./test have built things:
# ./make-cable-pictures.sh, as root, since the emulated micro's line becomes /dev/ttyUSB77 meanwhile.
# Needs Debian's xvfb, xauth, openbox, xdotool, imagemagick and pngquant.
set -eu
here=$(dirname "$(readlink -f "$0")")
root=$here/../..
port=/dev/ttyUSB77 # a link, which stands among the first in the program's list

if [ "${1-}" != inside ]; then
    home=$(mktemp -d)
    trap 'rm -rf "$home" "$port"' EXIT
    cp "$root"/tests/data/discs/*.?sd "$home"
    mkdir "$home/config"
    for i in $(seq 400); do # enough that a listing takes a while
        mkdir -p "$home/collection/$i"
        for j in $(seq 40); do ln "$home/demo-dual.dsd" "$home/collection/$i/$j.dsd"; done
    done
    cat >"$home/config/Quoravel.pref" <<'PREF'
<?xml version="1.0" encoding="UTF-8"?>
<xmldict version="1.1">
<key>MainHeight</key>
<integer>300</integer>
<key>TraceHeight</key>
<integer>240</integer>
<key>CLIHeight</key>
<integer>240</integer>
</xmldict>
PREF
    cd "$home"
    HOME=$home XDG_CONFIG_HOME=$home/config \
        xvfb-run -a -s "-screen 0 1280x900x24" "$here/make-cable-pictures.sh" inside
    exit
fi

openbox 2>/dev/null &
coproc micro {
    exec node "$root/tests/beeb/machine.mjs" --tavrilo --pictures \
        --pty "$root/build/dev/tests/beeb/pty_line"
}
read -r _ line <&"${micro[0]}"
ln -sf "$line" "$port"

# micro COMMAND...: has the emulated micro do something.
micro() {
    printf '%s\n' "$*" >&"${micro[1]}"
    read -r _ <&"${micro[0]}"
}

# take NAME WINDOW: the window with its frame.
take() {
    import -frame -window "$2" "$here/pictures/$1.png"
    pngquant --force --ext .png 32 "$here/pictures/$1.png"
}

# The newest window of that name, once it stands.
window() {
    sleep 0.7
    xdotool search --sync --onlyvisible --name "$1" | tail -n 1
}

# choose KEY...: an item of the Tavrilo menu, by the keys that lead to it from its top.
choose() {
    xdotool windowactivate --sync "$main" key --delay 150 alt+f Right Right "$@"
    sleep 0.5
}

micro insert 0 "$HOME/demo-basic.ssd"
micro picture "$here/pictures/micro-waiting.png"
"$root/build/release/src/quoravel" demo-dual.dsd 2>/dev/null &
program=$!
main=$(window "Quoravel - demo-dual")
sleep 1

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
micro picture "$here/pictures/micro-receiving.png"
xdotool windowactivate --sync "$receive" key Escape
sleep 8

xdotool windowactivate --sync "$main" key --delay 150 alt+f Left Up Return
sleep 1
xdotool key ctrl+a type "$HOME/collection"
xdotool key Return
sleep 1
xdotool key Return
take ex-progress "$(window "[*]EX Progress")"
kill "$program"
micro quit || true
