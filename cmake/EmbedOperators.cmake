# Turns the file INPUT into the C++ source OUTPUT, which defines the function of
# data/embedded_operators.h: an array of bytes, since not every compiler takes a string literal of
# that length.
file(READ "${INPUT}" bytes HEX)
string(REPEAT "[0-9a-f]" 32 line)
string(REGEX REPLACE "(${line})" "\\1\n" bytes "${bytes}")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
file(WRITE "${OUTPUT}" "#include \"data/embedded_operators.h\"

namespace KIVRA::TSHARK::DATA {

namespace {

constexpr unsigned char text[] = {
${bytes}
0x00};

}  // namespace

std::string_view embedded_operators() {
    return {reinterpret_cast<const char*>(text), sizeof text - 1};
}

}  // namespace KIVRA::TSHARK::DATA
")
