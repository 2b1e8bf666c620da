# Writes INPUT as a C++ byte array named kResource_SYMBOL into OUTPUT.
file(READ ${INPUT} hex HEX)
string(LENGTH "${hex}" hexLength)
math(EXPR size "${hexLength} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n" bytes "${bytes}")
file(WRITE ${OUTPUT}
  "// Generated from ${INPUT}; do not edit.\n"
  "#include <cstddef>\n"
  "extern const unsigned char kResource_${SYMBOL}[];\n"
  "extern const std::size_t kResource_${SYMBOL}_size;\n"
  "const unsigned char kResource_${SYMBOL}[] = {\n${bytes}0x00};\n"
  "const std::size_t kResource_${SYMBOL}_size = ${size};\n")
