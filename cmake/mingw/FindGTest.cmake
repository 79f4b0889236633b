# GoogleTest, built from the sources that Debian packages.
set(INSTALL_GTEST OFF)
add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
set(GTest_FOUND TRUE)
