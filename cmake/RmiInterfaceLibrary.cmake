# For the embedded provider:
#   rmi_interface_library(<target> IDL <idl file>)  makes an interface library
# What is generated lands in the build tree's folder "generated" beside the calling list file.

find_program(OMNIIDL omniidl DOC "The IDL front end that the code generator runs in")
if(NOT OMNIIDL)
    message(FATAL_ERROR "The program omniidl is missing, in which the generator for interface files runs. "
                        "On Debian: apt-get install omniidl. Elsewhere, name it: -DOMNIIDL=/path/to/omniidl")
endif()

get_filename_component(DDSRMI_IDL_FOLDER ${CMAKE_CURRENT_LIST_DIR}/../ddsrmi/idl ABSOLUTE)
get_filename_component(DDSRMI_GENERATOR_FOLDER ${CMAKE_CURRENT_LIST_DIR}/../ddsrmi/generator ABSOLUTE)

# Makes the shared library `target` from an interface file: the proxy and the reply handlers for clients, and the
# skeleton for servers. Whoever links it may include the generated headers.
function(rmi_interface_library target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "IDL" "")
    if(NOT arg_IDL OR arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "rmi_interface_library(${target} ...): use rmi_interface_library(<target> IDL <file>)")
    endif()
    get_filename_component(idl ${arg_IDL} ABSOLUTE)
    get_filename_component(stem ${idl} NAME_WLE)
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/generated)
    file(MAKE_DIRECTORY ${folder})

    set(headers ${folder}/${stem}_Types.h ${folder}/${stem}_InterfaceInfo.h
                ${folder}/${stem}_InterfaceProxy.h ${folder}/${stem}_Interface.h)
    set(sources ${folder}/${stem}_InterfaceInfo.cpp ${folder}/${stem}_InterfaceProxy.cpp ${folder}/${stem}_Interface.cpp)
    file(GLOB generator CONFIGURE_DEPENDS ${DDSRMI_GENERATOR_FOLDER}/ddsrmi_be/*.py)

    add_custom_command(
        OUTPUT ${headers} ${sources}
        COMMAND ${CMAKE_COMMAND} -E env PYTHONDONTWRITEBYTECODE=1
                ${OMNIIDL} -p${DDSRMI_GENERATOR_FOLDER} -bddsrmi_be -I${DDSRMI_IDL_FOLDER} -C${folder} ${idl}
        DEPENDS ${idl} ${DDSRMI_IDL_FOLDER}/dds_rmi.idl ${generator}
        COMMENT "Generating the interface library of ${stem}.idl"
        VERBATIM)

    add_library(${target} SHARED ${headers} ${sources})
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${folder}>)
    target_link_libraries(${target} PUBLIC RMI::layer PRIVATE $<TARGET_NAME_IF_EXISTS:project_warnings>)
    # As on the devices, whose compilers know nothing newer.
    set_target_properties(${target} PROPERTIES CXX_STANDARD 11 CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF)
endfunction()
