# Language, warnings and sanitizers hang on this one target; every target of the project links it.
set(QUORAVEL_SANITIZE "" CACHE STRING "Sanitizers to build with, for example address,undefined")

add_library(quoravel_flags INTERFACE)
target_compile_features(quoravel_flags INTERFACE cxx_std_20)
set(CMAKE_CXX_EXTENSIONS OFF)

target_compile_options(quoravel_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>) # clang counts it to -Wconversion, gcc does not

if(QUORAVEL_SANITIZE)
    target_compile_options(quoravel_flags INTERFACE
        -fsanitize=${QUORAVEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -O1)
    target_link_options(quoravel_flags INTERFACE -fsanitize=${QUORAVEL_SANITIZE})
endif()
