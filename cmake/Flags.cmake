# Language, warnings and sanitizers hang on this one target; every target of the project links it.
set(QUORAVEL_SANITIZE "" CACHE STRING "Sanitizers to build with, for example address,undefined")

add_library(quoravel_flags INTERFACE)
target_compile_features(quoravel_flags INTERFACE cxx_std_20)
set(CMAKE_CXX_EXTENSIONS OFF)

# clang counts sign conversions to -Wconversion, gcc does not. gcc 12 warns at -O2 of overlaps in
# "text" + string that are not there.
target_compile_options(quoravel_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion> $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)

# What makes a fault in the handling of memory end the program rather than serve an attacker. The
# standard library checks its bounds where faults are looked for; in the program that people run, that
# would take twice the time for a track from the cable and a third more for a page.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
target_compile_definitions(quoravel_flags INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
if(QUORAVEL_SANITIZE)
    target_compile_definitions(quoravel_flags INTERFACE _GLIBCXX_ASSERTIONS)
endif()
foreach(flag IN ITEMS -fstack-protector-strong -fstack-clash-protection -fcf-protection)
    check_cxx_compiler_flag(${flag} QUORAVEL_HAS${flag}) # the last one is for x86 alone
    if(QUORAVEL_HAS${flag})
        target_compile_options(quoravel_flags INTERFACE ${flag})
    endif()
endforeach()
target_link_options(quoravel_flags INTERFACE
    LINKER:-z,relro,-z,now,-z,noexecstack LINKER:--as-needed)

if(QUORAVEL_SANITIZE)
    target_compile_options(quoravel_flags INTERFACE
        -fsanitize=${QUORAVEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
        $<$<CONFIG:Debug>:-O1>)
    if(QUORAVEL_FUZZ)
        # Watching every comparison takes half of the time; samples and word lists lead as far.
        target_compile_options(quoravel_flags INTERFACE -fno-sanitize-coverage=trace-cmp)
    endif()
    target_link_options(quoravel_flags INTERFACE -fsanitize=${QUORAVEL_SANITIZE})
else()
    # The checked forms of the C library's routines need an optimiser, and would hide faults from the
    # sanitizers.
    target_compile_options(quoravel_flags INTERFACE
        $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=3>)
endif()
