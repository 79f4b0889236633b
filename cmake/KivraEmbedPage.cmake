set(KIVRA_EMBED_PAGE_SCRIPT "${CMAKE_CURRENT_LIST_DIR}/EmbedPage.cmake")

# Adds to a target the definition of a function that gives a page, a page_frame of replay/page/page_file.h.
#
# FOLDER: what the names of the files below count from.
# FUNCTION, HEADER: the function, and the header that declares it.
# PAGE: the HTML file.
# STYLES, SCRIPTS: in their order; each script has what those before it define.
function(kivra_embed_page target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "FOLDER;FUNCTION;HEADER;PAGE" "STYLES;SCRIPTS")
    set(source "${CMAKE_CURRENT_BINARY_DIR}/${arg_FUNCTION}.cpp")
    set(files ${arg_PAGE} ${arg_STYLES} ${arg_SCRIPTS})
    list(TRANSFORM files PREPEND "${arg_FOLDER}/")
    list(JOIN arg_STYLES "," styles)
    list(JOIN arg_SCRIPTS "," scripts)
    add_custom_command(OUTPUT "${source}"
        COMMAND "${CMAKE_COMMAND}" "-DFOLDER=${arg_FOLDER}" "-DFUNCTION=${arg_FUNCTION}"
            "-DHEADER=${arg_HEADER}" "-DPAGE=${arg_PAGE}" "-DSTYLES=${styles}" "-DSCRIPTS=${scripts}"
            "-DOUTPUT=${source}" -P "${KIVRA_EMBED_PAGE_SCRIPT}"
        DEPENDS ${files} "${KIVRA_EMBED_PAGE_SCRIPT}"
        COMMENT "Embedding ${arg_PAGE}"
        VERBATIM)
    add_library(kivra_${arg_FUNCTION} OBJECT "${source}")
    kivra_target(kivra_${arg_FUNCTION})
    target_include_directories(kivra_${arg_FUNCTION} PRIVATE "${PROJECT_SOURCE_DIR}")
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:kivra_${arg_FUNCTION}>)
endfunction()
