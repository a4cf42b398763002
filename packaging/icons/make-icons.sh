#!/usr/bin/env bash
# Renders the icons anew from their drawings: ./make-icons.sh. Needs Debian's librsvg2-bin.
set -eu
cd "$(dirname "$(readlink -f "$0")")"
for size in 16 22 24 32 48 64 128 256; do
    drawing=quoravel.svg
    [ "$size" -gt 32 ] || drawing=quoravel-small.svg
    rsvg-convert -w "$size" -h "$size" -o "quoravel-$size.png" "$drawing"
done
