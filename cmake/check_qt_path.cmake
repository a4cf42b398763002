# cmake -P check_qt_path.cmake "FOLDER|FOLDER|...": fails if a Qt folder is among them.
math(EXPR last "${CMAKE_ARGC} - 1")
if("${CMAKE_ARGV${last}}" MATCHES "[^|]*[/\\]([qQ]t[0-9]|Qt[A-Z])[^|]*")
    message(FATAL_ERROR "Qt include path: ${CMAKE_MATCH_0}")
endif()
