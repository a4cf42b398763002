# For scripts that take pictures of the running program to source, with root set to the project's
# folder: a virtual display with a home of its own, and the program's windows in it.
# Needs Debian's xvfb, xauth, openbox, xdotool, imagemagick and pngquant.
# shellcheck shell=bash disable=SC2154

program=${QUORAVEL:-$root/build/release/src/quoravel}

# A window that does not come ends the script rather than holding it for ever.
xdotool() { timeout 20 xdotool "$@"; }

# in_display SCRIPT [ARGUMENT...]: runs the script in a display and a home with the demo discs. The
# caller may have a function `furnish` that puts more into that home, and `clean_up`.
in_display() {
    home=$(mktemp -d)
    trap '! declare -F clean_up >/dev/null || clean_up; rm -rf "$home"' EXIT
    cp "$root"/tests/data/discs/*.?sd "$home"
    mkdir "$home/config"
    ! declare -F furnish >/dev/null || furnish
    cd "$home" || exit
    HOME=$home XDG_CONFIG_HOME=$home/config xvfb-run -a -s "-screen 0 ${screen:-1280x900}x24" "$@"
}

# prefs KEY NUMBER...: the preferences that the program will find.
prefs() {
    {
        printf '<?xml version="1.0" encoding="UTF-8"?>\n<xmldict version="1.1">\n'
        printf '<key>%s</key>\n<integer>%s</integer>\n' "$@"
        printf '</xmldict>\n'
    } >"${home-$HOME}/config/Quoravel.pref"
}

# collection TIMES: a folder of that name in the home, with 2 to the power of TIMES discs.
collection() {
    mkdir -p "$home/collection/0"
    ln "$home/demo-dual.dsd" "$home/collection/0"
    local i
    for i in $(seq "$1"); do
        cp -al "$home/collection/0" "$home/$i"
        mv "$home/$i" "$home/collection/0"
    done
}

# start IMAGE: the program with a disc, its window active.
start() {
    "$program" "$1" 2>/dev/null &
    running=$!
    main=$(window "Quoravel - $1")
    xdotool windowactivate --sync "$main"
    sleep 0.5
}

stop() {
    kill "$running"
    wait "$running" 2>/dev/null || true
}

# The newest window of that name, once it stands.
window() {
    sleep 0.7
    xdotool search --sync --onlyvisible --name "$1" | tail -n 1
}

# menu KEY...: goes from the main window's File menu by these keys.
menu() {
    xdotool windowactivate --sync "$main" key --delay 120 alt+f "$@"
    sleep 0.4
}

# The File menu's item that stands N lines from its end.
from_the_end() {
    local keys=()
    for ((i = 0; i < $1; i++)); do keys+=(Up); done
    menu "${keys[@]}"
}

# take NAME WINDOW: the window with its frame.
take() {
    import -frame -window "$2" "$pictures/$1.png"
    shrink "$1"
}

# picture NAME [WINDOW]: the part of the screen that a window, or else the main one, takes with its
# frame, menus over it included. The place that xdotool tells counts the frame twice.
picture() {
    sleep 0.6
    eval "$(xdotool getwindowgeometry --shell "${2-$main}")"
    import -window root -crop "$((WIDTH + 4))x$((HEIGHT + 24))+$((X - 3))+$((Y - 40))" +repage \
        "$pictures/$1.png"
    shrink "$1"
}

shrink() { pngquant --force --ext .png 32 "$pictures/$1.png"; }
