# For `run` and `test` to source: the packages of Debian 12 that each purpose needs, how to get
# them, and how to build. Both set `root` to the project's folder before.
# shellcheck shell=bash disable=SC2034,SC2154

packages_build=(g++ cmake ninja-build libexpat1-dev libpugixml-dev qt6-base-dev
    qt6-serialport-dev)
packages_tests=(libgtest-dev libgmock-dev poppler-utils qt6-multimedia-dev
    xvfb xauth openbox dbus-daemon at-spi2-core python3-gi gir1.2-atspi-2.0)
packages_emulator=(nodejs npm)
packages_checks=(clang libclang-rt-dev clang-format clang-tidy python3)
packages_package=(appstream desktop-file-utils dpkg-dev file lintian mandoc qt6-multimedia-dev
    shared-mime-info)
packages_wayland=(qt6-wayland)
packages_virtual_display=(xvfb xauth x11vnc openbox)

say() { printf '%s\n' "$*"; }

die() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

is_installed() {
    dpkg-query -W -f '${db:Status-Status}\n' "$1" 2>/dev/null | grep -qx installed
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

apt_get() {
    as_root env DEBIAN_FRONTEND=noninteractive LC_ALL=C apt-get -q -y -o DPkg::Lock::Timeout=120 "$@"
}

# Installs those of the named packages that are missing.
need_packages() {
    local package log missing=()
    for package in "$@"; do
        is_installed "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    command -v apt-get >/dev/null ||
        die "This machine has no apt-get, so please install yourself what Debian calls ${missing[*]}."
    [ "$(id -u)" -eq 0 ] || command -v sudo >/dev/null ||
        die "Packages are missing, and there is no sudo; as root, type: apt-get install ${missing[*]}"

    say "Installing ${missing[*]}"
    log=$(mktemp) || die "There is no room for a temporary file."
    # An update that fails is no reason to stop: what is needed may be known already.
    apt_get update >"$log" 2>&1
    if ! apt_get install --no-install-recommends "${missing[@]}" >>"$log" 2>&1; then
        grep -E '^(E|sudo):' "$log" >&2 || tail -n 5 "$log" >&2
        rm -f "$log"
        die "Could not install ${missing[*]}: the lines above say why."
    fi
    rm -f "$log"
}

# Gets the emulator for tests/beeb with its exact versions, into a folder that git ignores.
need_emulator() {
    local folder=$root/tests/beeb log
    if ! command -v node >/dev/null || ! command -v npm >/dev/null; then
        need_packages "${packages_emulator[@]}"
    fi
    [ ! "$folder/node_modules/.package-lock.json" -ot "$folder/package-lock.json" ] && return

    say "Fetching the emulator of a BBC Micro for the tests"
    log=$(mktemp) || die "There is no room for a temporary file."
    if ! (cd "$folder" && npm ci --omit=optional --ignore-scripts --no-audit --no-fund) >"$log" 2>&1; then
        tail -n 5 "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
    touch "$folder/node_modules/.package-lock.json"
}

# Configures and builds a preset, all of it or the targets named behind it.
build() {
    local preset=$1 log quiet=()
    shift
    say "Building $preset${*:+: $*}"
    log=$(mktemp) || die "There is no room for a temporary file."
    if ! (cd "$root" && cmake --preset "$preset") >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        die "CMake could not set up the build $preset; it says why above."
    fi
    rm -f "$log"
    [ -t 1 ] || quiet=(--quiet)
    (cd "$root" && cmake --build --preset "$preset" ${1:+--target "$@"} -- -j "$(nproc)" "${quiet[@]}")
}
