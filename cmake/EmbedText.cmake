# Puts text files into a C++ program.
include_guard(GLOBAL)

# embed_texts(<header> NAMESPACE <name> FILES <constant>=<file>...)
# Writes a header with one std::string_view for each file, whenever one of them has changed.
function(embed_texts header)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "NAMESPACE" "FILES")
    set(files "")
    foreach(pair ${arg_FILES})
        string(REGEX REPLACE "^[^=]*=" "" file ${pair})
        list(APPEND files ${file})
    endforeach()
    list(JOIN arg_FILES "," pairs)
    add_custom_command(
        OUTPUT ${header}
        COMMAND ${CMAKE_COMMAND} -DHEADER=${header} -DNAMESPACE=${arg_NAMESPACE} -DPAIRS=${pairs}
                -P ${PROJECT_SOURCE_DIR}/cmake/write_texts.cmake
        DEPENDS ${files} ${PROJECT_SOURCE_DIR}/cmake/write_texts.cmake
        COMMENT "Embedding texts in ${header}"
        VERBATIM)
endfunction()
