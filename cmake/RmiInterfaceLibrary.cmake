# For the embedded provider:
#   ddsrmi_compile_topics(<target> <idl file>)      adds the code of DDS topics to a target
#   rmi_interface_library(<target> IDL <idl file>)  makes an interface library
# Everything that is generated lands in the build tree's folder "generated" beside the calling list file.

find_program(IDLC idlc REQUIRED DOC "Cyclone DDS's IDL compiler (Debian package cyclonedds-tools)")
find_program(OMNIIDL omniidl DOC "The IDL front end that the code generator runs in")
if(NOT OMNIIDL)
    message(FATAL_ERROR "The program omniidl is missing, in which the generator for interface files runs. "
                        "On Debian: apt-get install omniidl. Elsewhere, name it: -DOMNIIDL=/path/to/omniidl")
endif()

get_filename_component(DDSRMI_IDL_FOLDER ${CMAKE_CURRENT_LIST_DIR}/../ddsrmi/idl ABSOLUTE)
get_filename_component(DDSRMI_GENERATOR_FOLDER ${CMAKE_CURRENT_LIST_DIR}/../ddsrmi/generator ABSOLUTE)

# Compiles the topic types of an IDL file with idlc and adds them, and the folder of their header, to `target`.
# A file of topics that includes dds_rmi.idl needs the header dds_rmi.h, which RMI::layer gives.
function(ddsrmi_compile_topics target idl)
    get_filename_component(idl ${idl} ABSOLUTE)
    get_filename_component(stem ${idl} NAME_WLE)
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/generated)
    file(MAKE_DIRECTORY ${folder})

    # The names of folders that idlc writes into its output would make it differ between builds.
    add_custom_command(
        OUTPUT ${folder}/${stem}.c ${folder}/${stem}.h
        COMMAND ${CMAKE_COMMAND} -E copy_if_different ${idl} ${folder}
        COMMAND ${IDLC} -l c -x final -I ${DDSRMI_IDL_FOLDER} ${stem}.idl
        COMMAND sed -i "s,${folder}/,," ${stem}.c ${stem}.h
        WORKING_DIRECTORY ${folder}
        DEPENDS ${idl} ${DDSRMI_IDL_FOLDER}/dds_rmi.idl
        COMMENT "Compiling the topics of ${stem}.idl"
        VERBATIM)

    find_package(CycloneDDS REQUIRED)
    target_sources(${target} PRIVATE ${folder}/${stem}.c ${folder}/${stem}.h)
    # The code is idlc's, so our warnings do not apply to it.
    set_source_files_properties(${folder}/${stem}.c PROPERTIES COMPILE_OPTIONS "-w")
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${folder}>)
    target_link_libraries(${target} PRIVATE CycloneDDS::ddsc)
    # Under the GNU dialect words such as "linux" are macros, and could not be names of members.
    set_target_properties(${target} PROPERTIES C_EXTENSIONS OFF)
endfunction()

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

    set(headers ${folder}/${stem}_InterfaceInfo.h ${folder}/${stem}_InterfaceProxy.h ${folder}/${stem}_Interface.h)
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
