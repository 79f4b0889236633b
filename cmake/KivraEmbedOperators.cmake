set(KIVRA_EMBED_SCRIPT "${CMAKE_CURRENT_LIST_DIR}/EmbedOperators.cmake")

# Makes an object library that defines the function of data/embedded_operators.h with the content of
# a JSON file. A change of the file rebuilds the library.
function(kivra_embed_operators target json_file)
    cmake_path(ABSOLUTE_PATH json_file)
    set(source "${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp")
    add_custom_command(OUTPUT "${source}"
        COMMAND "${CMAKE_COMMAND}"
            "-DINPUT=${json_file}" "-DOUTPUT=${source}" -P "${KIVRA_EMBED_SCRIPT}"
        DEPENDS "${json_file}" "${KIVRA_EMBED_SCRIPT}"
        COMMENT "Embedding ${json_file}"
        VERBATIM)
    add_library(${target} OBJECT "${source}")
    kivra_target(${target})
    target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}")
endfunction()
