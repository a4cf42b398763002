#!/bin/sh
# tidy.sh ARGUMENT...: run-clang-tidy, of which only the findings are shown.
said=$(run-clang-tidy -quiet "$@" 2>&1) && exit
printf '%s\n' "$said" | grep -Ev '^clang-tidy|warnings? generated[.]$'
exit 1
