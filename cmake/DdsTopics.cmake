# For the embedded provider's own parts and tests:
#   ddsrmi_compile_topics(<target> <idl file>)      adds the code of DDS topics to a target
# What is generated lands in the build tree's folder "generated" beside the calling list file.

find_program(IDLC idlc REQUIRED DOC "Cyclone DDS's IDL compiler (Debian package cyclonedds-tools)")

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
