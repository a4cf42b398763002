#!/usr/bin/env bash
# performance.sh BUILD_FOLDER PAGE
# Runs every benchmark of a build and writes the page: what was measured, each figure beside its
# yardstick of the same run. A benchmark that fails leaves the page as it was.
set -eu -o pipefail

build=$(readlink -f "$1")
page=$2
here=$(dirname "$(readlink -f "$0")")

# Two gigabytes of images, and no disc that could slow their reading.
in_memory() { if [ -d /dev/shm ]; then TMPDIR=/dev/shm "$@"; else "$@"; fi; }

offscreen() { QT_QPA_PLATFORM=offscreen "$@"; }

# The sentences that hold a bound, as a list.
sentences() { grep -E '\((at most|at least|under) ' | sed 's/^/- /'; }

new=$(mktemp)
trap 'rm -f "$new"' EXIT

start=$("$here/first_paint.sh" "$build/src/quoravel" "$build/bench/bare_window" \
    "$build/bench/libreport_first_paint.so" | sentences)
disc=$("$build/bench/bench_disc" | sentences)
listing=$(in_memory "$build/bench/bench_drive_listing" | sentences)
windows=$(offscreen "$build/bench/bench_windows" 2>/dev/null | sentences)
speeds=$("$build/bench/bench_speeds")
cable=$(offscreen "$build/bench/bench_cable" | sentences)

cat >"$new" <<EOT
# Performance

Made by \`cmake --build --preset bench --target performance\`, which runs every benchmark and writes this
page. Processor: $(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -n 1), $(nproc) cores.
In brackets what is asked for. Ratios compare two things in one run, so they hold elsewhere, too. The
images of the collection lie in memory, all other files on a disc.

## Start

$start

## Discs and files

$disc
$listing

## Views

$windows

What the renderers write without a window, and what the formatter reads:

| | MB a second | at least |
|---|---|---|
$(grep -v Track <<<"$speeds" | sort)

## The cable

$cable

The codec of tracks alone, in bytes of packet; the number is the longest run in the track:

| | MB a second | at least |
|---|---|---|
$(grep Track <<<"$speeds" | sort)

Whole discs over the cable take the micro's time; [the companion's page](companion.md) has them.
EOT
mv "$new" "$page"
chmod 644 "$page"
