# The checks as build targets of their own; `./test --all` runs them all.
#   check-format  the code is laid out as .clang-format says    (format: lays it out so)
#   check-tidy    clang-tidy has nothing to say                 (.clang-tidy lists what it looks for)
#   check-layers  no file includes what its room may not know   (check_layers.cmake has the rules)
# The fuzzers' targets are in tests/fuzz, the benchmarks' in bench.

set(code_files src tests bench -name node_modules -prune -o ( -name *.cpp -o -name *.h ))
set(layer_check ${CMAKE_COMMAND} -P ${PROJECT_SOURCE_DIR}/cmake/check_layers.cmake)
set(qt_path_check ${CMAKE_COMMAND} -P ${PROJECT_SOURCE_DIR}/cmake/check_qt_path.cmake)

cmake_host_system_information(RESULT cores QUERY NUMBER_OF_LOGICAL_CORES)

add_custom_target(check-format
    COMMAND find ${code_files} -exec clang-format --dry-run --Werror {} +
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} VERBATIM)

add_custom_target(format
    COMMAND find ${code_files} -exec clang-format -i {} +
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} VERBATIM)

add_custom_target(check-layers COMMAND ${layer_check} ${PROJECT_SOURCE_DIR} VERBATIM)

# All sources of the build but what Qt's moc and rcc write. clang's own warnings are the compiler's
# business.
add_custom_target(check-tidy
    COMMAND ${PROJECT_SOURCE_DIR}/tools/tidy.sh -j ${cores} -extra-arg=-Wno-error
            -p ${PROJECT_BINARY_DIR} "^(?!.*(_autogen|/[.]rcc)/).*/(src|tests)/.*[.]cpp$"
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    COMMENT "Reading every source with clang-tidy, for some minutes" VERBATIM)

if(QUORAVEL_TESTS)
    add_test(NAME layers COMMAND ${layer_check} ${PROJECT_SOURCE_DIR})
    # A small tree that breaks each rule, among includes that are allowed.
    add_test(NAME layers_catches COMMAND ${layer_check} ${PROJECT_SOURCE_DIR}/tests/layers)
    set_tests_properties(layers_catches PROPERTIES
        PASS_REGULAR_EXPRESSION "7 includes reach too far")

    add_test(NAME core_has_no_qt_path
        COMMAND ${qt_path_check} "$<JOIN:$<TARGET_PROPERTY:quoravel_core,INCLUDE_DIRECTORIES>,|>")
    if(QUORAVEL_UI)
        add_test(NAME qt_path_is_noticed
            COMMAND ${qt_path_check} "$<JOIN:$<TARGET_PROPERTY:quoravel_ui,INCLUDE_DIRECTORIES>,|>")
        set_tests_properties(qt_path_is_noticed PROPERTIES PASS_REGULAR_EXPRESSION "Qt include path")
    endif()
endif()
