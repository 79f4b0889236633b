# The build machine's nlohmann/json. Its headers know no platform, but those beside their folder do:
# only that folder may come into the cross compiler's sight, so it is copied.
find_package(nlohmann_json ${nlohmann_json_FIND_VERSION} CONFIG REQUIRED
    PATHS /usr NO_CMAKE_FIND_ROOT_PATH)
get_target_property(headers nlohmann_json::nlohmann_json INTERFACE_INCLUDE_DIRECTORIES)
list(GET headers 0 headers)
file(COPY "${headers}/nlohmann" DESTINATION "${CMAKE_BINARY_DIR}/headers")
set_target_properties(nlohmann_json::nlohmann_json PROPERTIES
    INTERFACE_INCLUDE_DIRECTORIES "${CMAKE_BINARY_DIR}/headers")
