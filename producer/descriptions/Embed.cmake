# cmake -DINPUT=<file> -DSYMBOL=<name> -DSCHEMA_MINOR=<0 or 1> -DOUTPUT=<file.cpp> -P Embed.cmake
# Turns a description file into the definition of zqgentl::descriptions::<name>.
get_filename_component(file_name "${INPUT}" NAME)
file(READ "${INPUT}" hex HEX)
file(SHA1 "${INPUT}" sha1)
string(LENGTH "${hex}" digits)
math(EXPR size "${digits} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
string(REGEX REPLACE "(................................................................................)" "\\1\n" bytes "${bytes}")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," hash "${sha1}")
file(WRITE "${OUTPUT}"
"#include \"producer/sim/Description.h\"

namespace zqgentl {
namespace descriptions {

static const uint8_t bytes[] = {
${bytes}};
const Description ${SYMBOL} = {\"${file_name}\", bytes, ${size}, {${hash}}, ${SCHEMA_MINOR}};

} // namespace descriptions
} // namespace zqgentl
")
