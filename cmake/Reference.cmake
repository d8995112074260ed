# cmake --build --preset docs: the reference of the public headers, in the build folder's reference/html. What is not
# documented fails it.
find_program(DOXYGEN doxygen DOC "Makes the reference of the public headers (Debian package doxygen)")
if(DOXYGEN)
    add_custom_target(docs
        COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/reference
        COMMAND ${CMAKE_COMMAND} -E env REFERENCE_FOLDER=${PROJECT_BINARY_DIR}/reference ${DOXYGEN} docs/Doxyfile
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
        COMMENT "Making the reference in ${PROJECT_BINARY_DIR}/reference/html"
        VERBATIM)
else()
    add_custom_target(docs
        COMMAND ${CMAKE_COMMAND} -E echo "doxygen is not there: install it (apt-get install doxygen) and configure again"
        COMMAND ${CMAKE_COMMAND} -E false
        VERBATIM)
endif()
