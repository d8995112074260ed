# What embed_texts() runs: writes HEADER from the files of PAIRS, "constant=file,...", as arrays of numbers.
set(text "// Generated; do not edit.\n#include <string_view>\n\nnamespace ${NAMESPACE} {\n\n")
string(REPLACE "," ";" PAIRS "${PAIRS}")
foreach(pair ${PAIRS})
    string(REGEX MATCH "^([^=]*)=(.*)$" found ${pair})
    set(name ${CMAKE_MATCH_1})
    file(READ ${CMAKE_MATCH_2} bytes HEX)
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "\\\\x\\1" bytes "${bytes}")
    # Pieces, because a compiler takes only so long a literal.
    string(REGEX REPLACE "((\\\\x..)(\\\\x..)?(\\\\x..)?(\\\\x..)?(\\\\x..)?(\\\\x..)?(\\\\x..)?(\\\\x..)?)" "\"\\1\" " bytes "${bytes}")
    string(APPEND text "inline constexpr char ${name}_bytes[] = ${bytes};\n"
                       "inline constexpr std::string_view ${name}{${name}_bytes, sizeof ${name}_bytes - 1};\n\n")
endforeach()
file(WRITE ${HEADER} "${text}} // namespace ${NAMESPACE}\n")
