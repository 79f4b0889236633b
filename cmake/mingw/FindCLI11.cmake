# The build machine's CLI11, whose headers know no platform. Only their folder may come into the
# cross compiler's sight, so it is copied.
find_package(CLI11 CONFIG REQUIRED PATHS /usr NO_CMAKE_FIND_ROOT_PATH)
get_target_property(headers CLI11::CLI11 INTERFACE_INCLUDE_DIRECTORIES)
list(GET headers 0 headers)
file(COPY "${headers}/CLI" DESTINATION "${CMAKE_BINARY_DIR}/headers")
set_target_properties(CLI11::CLI11 PROPERTIES
    INTERFACE_INCLUDE_DIRECTORIES "${CMAKE_BINARY_DIR}/headers")
