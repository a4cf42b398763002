# Who may include what: cmake -P check_layers.cmake FOLDER
# Prints FILE:LINE and the broken rule for every #include below FOLDER/src that reaches too far.
# docs/architecture.md has the table of rooms. Of the tests only this: those of the core have no Qt,
# nor have the fuzzers but the one for the places of windows.
cmake_minimum_required(VERSION 3.25)
math(EXPR last "${CMAKE_ARGC} - 1")
set(root "${CMAKE_ARGV${last}}")

# What the files of a room may include; windows (frm*), shell and main.cpp may include anything.
set(room_platform platform)
set(room_platform/qt platform platform/qt)
set(room_disc disc platform)
set(room_prefs prefs platform)
set(room_exchange exchange disc prefs platform)
set(room_view view exchange disc prefs platform)
set(room_link link disc prefs platform)

set(qt_files "/frm[^/]*$|^src/platform/qt/|^src/main[.]cpp$|^tests/fuzz/fuzz_place[.]cpp$")
set(qt_headers "^<Q[A-Za-z]")
set(system_files "^src/platform/(files|folders|growing_file|posix_file|saving)[.]cpp$|^src/platform/qt/|^tests/")
string(CONCAT system_headers
    "^<(sys|net|netinet|arpa|linux|asm)/|^<(unistd|fcntl|poll|termios|pwd|grp|dirent|dlfcn|spawn|"
    "pthread|netdb|windows)[.]h>")

# The room of a path below src; "windows" for whatever may include anything.
function(find_room path result)
    string(REGEX REPLACE "/.*" "" room "${path}")
    if(path MATCHES "(^|/)frm[^/]*$|^shell/|^main[.]cpp$")
        set(room windows)
    elseif(path MATCHES "^platform/qt/")
        set(room platform/qt)
    endif()
    set(${result} ${room} PARENT_SCOPE)
endfunction()

# Says in `result` what is wrong with an include of `header` (with its <> or "") in `file`.
function(find_broken_rule file header result)
    set(${result} "" PARENT_SCOPE)
    if(header MATCHES "${qt_headers}" AND NOT file MATCHES "${qt_files}")
        set(${result} "Qt belongs to frm*, platform/qt/ and main.cpp" PARENT_SCOPE)
    elseif(header MATCHES "${system_headers}" AND NOT file MATCHES "${system_files}")
        set(${result} "system headers belong to the files of platform/ that ask for files, and platform/qt/" PARENT_SCOPE)
    elseif(header MATCHES "^\"(.*)\"$" AND file MATCHES "^src/(.*)")
        find_room("${CMAKE_MATCH_1}" file_room)
        string(REPLACE "\"" "" path "${header}")
        find_room("${path}" header_room)
        if(NOT file_room STREQUAL windows AND NOT header_room IN_LIST room_${file_room})
            list(JOIN room_${file_room} ", " allowed)
            set(${result} "${file_room} includes only ${allowed} (and no window)" PARENT_SCOPE)
        endif()
    endif()
endfunction()

execute_process(
    COMMAND grep -rnoE --include=*.h --include=*.cpp
            "^[[:space:]]*#[[:space:]]*include[[:space:]]*[<\"][^>\"]+[>\"]" src tests/core tests/fuzz
    WORKING_DIRECTORY "${root}" OUTPUT_VARIABLE found ERROR_QUIET)
string(REGEX REPLACE "\n$" "" found "${found}")
string(REPLACE "\n" ";" found "${found}")
if(NOT found)
    message(FATAL_ERROR "No includes below ${root}/src")
endif()

list(SORT found COMPARE NATURAL)
set(broken 0)
foreach(line IN LISTS found)
    string(REGEX MATCH "^([^:]*):([0-9]+):.*include[^<\"]*([<\"].*)$" matched "${line}")
    set(place "${CMAKE_MATCH_1}:${CMAKE_MATCH_2}")
    set(header "${CMAKE_MATCH_3}")
    find_broken_rule("${CMAKE_MATCH_1}" "${header}" rule)
    if(rule)
        message("${place}: ${header}: ${rule}")
        math(EXPR broken "${broken} + 1")
    endif()
endforeach()
if(broken)
    message(FATAL_ERROR "${broken} includes reach too far")
endif()
