#!/usr/bin/env bash
# check-package.sh BUILD-FOLDER CPACK
# Makes the Debian packages of a build, leaves them in BUILD-FOLDER/packages, and checks them and
# every file in them. Then it breaks one thing after the other and expects the check of it to notice.
set -u
build=$1
cpack=$2
packages=$build/packages
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
chmod 755 "$work"
root=$work/root # both packages unpacked
failures=0

fail() {
    printf '%s\n' "$*"
    return 1
}

# Fails if the command says anything at all, in the words of the command.
is_silent() {
    local said
    said=$("$@" 2>&1)
    [ -z "$said" ] || fail "$said"
}

# Each check takes the root to look at, and says what is wrong.

check_lintian() {
    local options=(-I --pedantic --fail-on "error,warning,info,pedantic")
    # The compiler lays sixteen-byte pieces of texts side by side, which then read as other words.
    options+=(--suppress-tags spelling-error-in-binary)
    [ "$(id -u)" -ne 0 ] || options+=(--allow-root)
    lintian "${options[@]}" "${1%/*}"/*.deb
}

check_depends() {
    local program sound
    program=$(dpkg-deb -f "${1%/*}"/quoravel_*.deb Depends Recommends)
    sound=$(dpkg-deb -f "${1%/*}"/quoravel-sound_*.deb Depends)
    [[ $program = *libqt6widgets6* && $program != *multimedia* ]] ||
        fail "The package of the program needs $program" || return
    [[ $sound = *"quoravel (= "* && $sound = *libqt6multimedia6* ]] ||
        fail "The package of the sound needs $sound"
}

check_desktop_entry() {
    is_silent desktop-file-validate "$1"/usr/share/applications/*.desktop
}

check_mime_types() {
    local share=$1/usr/share type
    is_silent env XDG_DATA_DIRS="$share" update-mime-database "$share/mime" || return
    for type in ssd dsd; do
        grep -q ":application/x-acorn-dfs-$type:\*.$type\$" "$share/mime/globs2" ||
            fail "Files of the name *.$type have no type." || return
        grep -q "^MimeType=.*application/x-acorn-dfs-$type;" "$share"/applications/*.desktop ||
            fail "The desktop entry does not open files of the name *.$type." || return
    done
    ! grep '[.]img$' "$share/mime/globs2" || fail "The name *.img belongs to others."
}

check_appstream() {
    appstreamcli validate --no-net --pedantic --no-color --explain "$1"/usr/share/metainfo/*.xml ||
        return
    is_silent appstreamcli validate-tree --no-net --no-color "$1" >"$work/tree" ||
        grep -q '^. Validation was successful' "$work/tree" || fail "$(cat "$work/tree")"
}

check_man_page() {
    local page
    for page in "$1"/usr/share/man/man1/*.gz; do
        gzip -dc "$page" >"$work/${page##*/}" || return
        is_silent mandoc -T lint -W all "$work/${page##*/}" || return
    done
}

check_icons() {
    local size icons=$1/usr/share/icons/hicolor
    for size in 16 22 24 32 48 64 128 256; do
        file "$icons/${size}x$size/apps/quoravel.png" | grep -q " $size x $size," ||
            fail "There is no icon of $size x $size dots." || return
    done
    [ -s "$icons/scalable/apps/quoravel.svg" ] || fail "There is no drawing of the icon."
}

check_one_binary() {
    local binary=$1 headers dynamic
    headers=$(readelf -hlW "$binary")
    dynamic=$(readelf -dW "$binary")
    grep -q '^ *Type: *DYN ' <<<"$headers" || fail "$binary lies at a fixed address." || return
    ! grep -q ' INTERP ' <<<"$headers" || grep -q 'FLAGS_1.* PIE' <<<"$dynamic" ||
        fail "$binary lies at a fixed address." || return
    grep -q 'FLAGS_1.* NOW' <<<"$dynamic" || fail "$binary looks symbols up late." || return
    grep -q ' GNU_RELRO ' <<<"$headers" || fail "$binary leaves its relocations writable." || return
    grep -q ' GNU_STACK .* RW  ' <<<"$headers" || fail "$binary has a stack to execute." || return
    ! grep -q ' LOAD .* RWE ' <<<"$headers" || fail "$binary has code to write." || return
    ! grep -q TEXTREL <<<"$dynamic" || fail "$binary changes its code as it starts."
}

check_binaries() {
    local binary
    for binary in "$1"/usr/lib/*/quoravel/quoravel{,-sound.so}; do
        check_one_binary "$binary" || return
    done
    readelf --dyn-syms -W "$1"/usr/lib/*/quoravel/quoravel | grep -q '__stack_chk_fail' ||
        fail "The program does not watch its stack." || return
    readelf --dyn-syms -W "$1"/usr/lib/*/quoravel/quoravel | grep -q '_chk@' ||
        fail "The program does not use the checked routines of the C library."
}

# Starts the program by its link, with an image, and looks at its memory once it waits for events.
check_running() {
    local pid maps state i calm=0 home=$work/home
    mkdir -p "$home"
    head -c 204800 /dev/zero >"$home/a disc.ssd"
    chmod 700 "$home"
    (cd "$home" && exec env HOME="$home" XDG_{CONFIG,STATE}_HOME="$home" XDG_RUNTIME_DIR="$home" \
        QT_QPA_PLATFORM=offscreen "$1/usr/bin/quoravel" "a disc.ssd") &
    pid=$!
    for ((i = 0; i < 400; ++i)); do
        maps=$(cat "/proc/$pid/maps" 2>/dev/null)
        state=$(grep '^State:' "/proc/$pid/status" 2>/dev/null)
        [[ $state != *Z* ]] || break
        [[ $state = *S* && $maps = *libqoffscreen* ]] && ((++calm > 10)) && break
        sleep 0.05
    done
    kill "$pid" 2>/dev/null
    wait "$pid" 2>/dev/null
    [[ $maps = *libqoffscreen* ]] || fail "The program does not start." || return
    ! grep '^[^ ]* .wx' <<<"$maps" || fail "Memory to write and to execute."
}

check_size() {
    local size
    size=$(find "$1" -type f -printf '%s\n' | awk '{ sum += $1 } END { printf "%.2f", sum / 1e6 }')
    printf 'Installed size %s MB (at most 10)\n' "$size"
    awk -v size="$size" 'BEGIN { exit size > 10 }'
}

all_checks=(lintian depends desktop_entry mime_types appstream man_page icons binaries running size)

make_packages() {
    rm -rf "$packages"
    "$cpack" --config "$build/CPackConfig.cmake" -B "$packages" >"$work/log" 2>&1 ||
        fail "$(cat "$work/log")" || exit
    rm -rf "$packages/_CPack_Packages"
    cp "$packages"/*.deb "$work" && [ "$(find "$work" -name '*.deb' | wc -l)" -eq 2 ] ||
        fail "There should be two packages; is qt6-multimedia-dev installed?" || exit
    unpack "$work" "$root"
}

unpack() {
    local package
    for package in "$1"/*.deb; do
        dpkg-deb -x "$package" "$2" || exit
    done
}

# catches CHECK WHAT COMMAND...: the check has to fail once the command has been at a copy of the root.
catches() {
    local check=$1 what=$2
    shift 2
    rm -rf "$work/broken" && mkdir "$work/broken"
    cp -a "$root" "$work/broken/root" && cp "$work"/*.deb "$work/broken" || exit
    if ! (cd "$work/broken/root" && "$@") >"$work/log" 2>&1; then
        fail "Could not make $what: $(cat "$work/log")"
        failures=$((failures + 1))
    elif "check_$check" "$work/broken/root" >"$work/log" 2>&1; then
        fail "check_$check has nothing against $what."
        failures=$((failures + 1))
    fi
}

program_without_permissions() {
    mkdir ../package && dpkg-deb -R ../quoravel_*.deb ../package &&
        chmod 600 ../package/usr/share/applications/*.desktop && dpkg-deb -b ../package ../quoravel_*.deb
}

sound_for_all() {
    mkdir ../package && dpkg-deb -R ../quoravel_*.deb ../package &&
        sed -i 's/^Depends: /&libqt6multimedia6, /' ../package/DEBIAN/control &&
        dpkg-deb -b ../package ../quoravel_*.deb
}

edit() { sed -i "$1" "$2" && chmod 644 "$2"; }

edit_man_page() {
    gzip -d usr/share/man/man1/quoravel.1.gz && edit "$1" usr/share/man/man1/quoravel.1 &&
        gzip usr/share/man/man1/quoravel.1
}

# Puts another program in the place of ours, linked as it should be but for the options.
other_program() {
    printf '%s\n' '#ifdef CODE_TO_WRITE' \
        '__attribute__((section(".both,\"awx\",@progbits#"))) int both = 1;' '#endif' \
        'int main(int, char** names) { return **names; }' |
        c++ -x c++ -O2 -pie -fPIE -Wl,-z,relro,-z,now "$@" -o usr/lib/*/quoravel/quoravel -
}

prove_checks() {
    local applications=usr/share/applications/quoravel.desktop types=usr/share/mime/packages/quoravel.xml
    local metainfo=usr/share/metainfo/example.quoravel.quoravel.metainfo.xml options
    catches lintian "a file that only root can read" program_without_permissions
    catches depends "sound for all" sound_for_all
    catches desktop_entry "no type" edit /^Type/d $applications
    catches mime_types "a broken document" edit 's/<.mime-info>//' $types
    catches mime_types "a type for .img" edit 's/[*][.]ssd/*.img/' $types
    catches mime_types "no open-document" edit /^MimeType/d $applications
    catches appstream "no licence" edit /metadata_license/d $metainfo
    catches appstream "a desktop entry that is not there" rm $applications
    catches man_page "an unknown macro" edit_man_page 's/^[.]Pp/.Px/'
    catches icons "an icon of another size" cp usr/share/icons/hicolor/{48x48,64x64}/apps/quoravel.png
    for options in -no-pie -Wl,-z,lazy -Wl,-z,norelro -Wl,-z,execstack -DCODE_TO_WRITE; do
        catches binaries "$options" other_program $options
    done
    catches running "a program that ends at once" other_program
    catches size "a large file" truncate -s 10M usr/share/large
}

make_packages
for check in "${all_checks[@]}"; do
    "check_$check" "$root" || {
        printf 'check_%s failed: see above.\n' "$check"
        failures=$((failures + 1))
    }
done
[ "$failures" -gt 0 ] || prove_checks
[ "$failures" -eq 0 ] || exit 1
printf 'The packages are in %s\n' "$packages"
