# What every target of the project is compiled and linked with.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
# A folder's name in a file would make it differ from one that is built elsewhere.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

include(CheckPIESupported)
check_pie_supported()

find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)

set(SANITIZE "" CACHE STRING "Sanitizers for the whole build, e.g. address,undefined or thread")

add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)
if(CMAKE_SYSROOT) # which may lie in one of these
    add_compile_options(-ffile-prefix-map=${CMAKE_SYSROOT}=)
endif()
# Without unique symbols a plug-in can really be unloaded.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-fno-gnu-unique>)
endif()
add_link_options(-Wl,-z,relro,-z,now -Wl,--as-needed)

if(SANITIZE)
    add_compile_options(-fsanitize=${SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g -O1)
    add_link_options(-fsanitize=${SANITIZE})
else()
    add_compile_options(-fstack-protector-strong "$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
    # A sanitizer's run-time comes from the program, so only a plain library can promise to be complete.
    add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>:-Wl,-z,defs>)
endif()

# Our own code is clean under these; generated C code of other tools is not held to them.
add_library(project_warnings INTERFACE)
target_compile_options(project_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow $<$<COMPILE_LANGUAGE:CXX>:-Wconversion;-Wnon-virtual-dtor;-Woverloaded-virtual> -Werror)
