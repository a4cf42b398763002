# Checks as build targets; tests/CMakeLists.txt and the script `test --all` run them.
