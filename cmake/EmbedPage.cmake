# Makes of the files in FOLDER a page that data are written into, and of the page the C++ source OUTPUT, which
# defines FUNCTION, declared in HEADER, as arrays of bytes, since not every compiler takes string literals of
# that length. The page's policy names its style and script by their hashes.
#
# PAGE: the HTML file.
# STYLES, SCRIPTS: files in their order, with commas between them.

# "sha256-" and the base64 form of a text's hash, as a Content-Security-Policy has it.
function(policy_hash text result)
    string(SHA256 hex "${text}")
    set(alphabet ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/)
    # 32 bytes: ten groups of three, and one of two, which lacks a last digit.
    set(base64 "")
    foreach(place RANGE 0 60 6)
        string(SUBSTRING "${hex}00" ${place} 6 group)
        foreach(shift IN ITEMS 18 12 6 0)
            math(EXPR digit "(0x${group} >> ${shift}) & 63")
            string(SUBSTRING "${alphabet}" ${digit} 1 digit)
            string(APPEND base64 "${digit}")
        endforeach()
    endforeach()
    string(SUBSTRING "${base64}" 0 43 base64)
    set(${result} "'sha256-${base64}='" PARENT_SCOPE)
endfunction()

# The text as a C++ array's elements.
function(bytes_of text result)
    string(HEX "${text}" bytes)
    string(REPEAT "[0-9a-f]" 32 line)
    string(REGEX REPLACE "(${line})" "\\1\n" bytes "${bytes}")
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
    set(${result} "${bytes}" PARENT_SCOPE)
endfunction()

# The content of the files in a list with commas.
function(content_of files result)
    string(REPLACE "," ";" files "${files}")
    set(content "")
    foreach(file IN LISTS files)
        file(READ "${FOLDER}/${file}" part)
        string(APPEND content "${part}")
    endforeach()
    set(${result} "${content}" PARENT_SCOPE)
endfunction()

file(READ "${FOLDER}/${PAGE}" page)
content_of("${STYLES}" style)
content_of("${SCRIPTS}" script)
set(script "\n(function () {\n\"use strict\";\n${script}})();\n")
if("${style}${script}" MATCHES "</(style|script)")
    message(FATAL_ERROR "style or script would end early in the page")
endif()

policy_hash("${style}" style_hash)
policy_hash("${script}" script_hash)
string(REPLACE "@STYLE_HASH@" "${style_hash}" page "${page}")
string(REPLACE "@SCRIPT_HASH@" "${script_hash}" page "${page}")
string(REPLACE "@STYLE@" "${style}" page "${page}")
string(FIND "${page}" "@DATA@" place)
string(SUBSTRING "${page}" 0 ${place} head)
math(EXPR place "${place} + 6")
string(SUBSTRING "${page}" ${place} -1 tail)
string(REPLACE "@SCRIPT@" "${script}" tail "${tail}")

bytes_of("${head}" head)
bytes_of("${tail}" tail)
file(WRITE "${OUTPUT}" "#include \"${HEADER}\"

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr unsigned char head[] = {
${head}};

constexpr unsigned char tail[] = {
${tail}};

}  // namespace

page_frame ${FUNCTION}() {
    return {{reinterpret_cast<const char*>(head), sizeof head},
            {reinterpret_cast<const char*>(tail), sizeof tail}};
}

}  // namespace KIVRA::TSHARK::REPLAY
")
