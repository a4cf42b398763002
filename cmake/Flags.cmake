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

if(QUORAVEL_SANITIZE)
    target_compile_options(quoravel_flags INTERFACE
        -fsanitize=${QUORAVEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
        $<$<CONFIG:Debug>:-O1>)
    if(QUORAVEL_FUZZ)
        # Watching every comparison takes half of the time; samples and word lists lead as far.
        target_compile_options(quoravel_flags INTERFACE -fno-sanitize-coverage=trace-cmp)
    endif()
    target_link_options(quoravel_flags INTERFACE -fsanitize=${QUORAVEL_SANITIZE})
endif()
