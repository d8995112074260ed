# For the provider "opensplice": an installation of OpenSplice DDS with its RMI layer, in the folder OSPL_HOME.
#   RMI::layer                                        target to link for the RMI layer
#   rmi_interface_library(<target> IDL <idl file>)    makes an interface library with the installation's generator
# What lies elsewhere, or has another name, can be named: see the cache variables below.

set(OSPL_HOME "$ENV{OSPL_HOME}" CACHE PATH "The OpenSplice installation")
set(OSPL_RMI_LIBRARY_NAMES ddsrmi dcpssacpp ddskernel CACHE STRING "What programs of the RMI layer are linked with")
set(OSPL_RMIPP_OPTIONS "" CACHE STRING "Options for rmipp, before the interface file")

if(NOT OSPL_HOME)
    message(FATAL_ERROR "RMI_PROVIDER=opensplice needs an installation of OpenSplice DDS with its RMI layer, and "
                        "OSPL_HOME does not name its folder. Set it in the environment or with -DOSPL_HOME=<folder>.")
endif()
get_filename_component(ospl_home ${OSPL_HOME} ABSOLUTE)

set(ospl_header_folders include include/sys include/dcps/C++/SACPP include/dcps/C++/CCPP include/dcps/C++/rmi
                        include/rmi)
set(ospl_idl_folders etc/idl etc/rmi etc include/rmi include)
set(ospl_missing)

# ospl_find(<file|library|program> <variable> <what> <name> <folder>...): in these folders of the installation only.
macro(ospl_find kind variable what name)
    set(folders ${ARGN})
    list(TRANSFORM folders PREPEND ${ospl_home}/)
    cmake_language(CALL find_${kind} ${variable} NAMES ${name} PATHS ${folders} NO_DEFAULT_PATH
                   NO_CMAKE_FIND_ROOT_PATH DOC "${what} ${name} of OpenSplice")
    if(NOT ${variable})
        list(JOIN folders " " folders)
        string(APPEND ospl_missing "\n  ${what} ${name}, looked for in ${folders} (or name it: -D${variable}=...)")
    endif()
endmacro()

ospl_find(path OSPL_DDSRMI_HEADERS "the folder of the header" ddsrmi.h ${ospl_header_folders})
ospl_find(path OSPL_OS_HEADERS "the folder of the header" os_stdlib.h ${ospl_header_folders})
ospl_find(path OSPL_RMI_IDL "the folder of the interface file" dds_rmi.idl ${ospl_idl_folders})
ospl_find(program RMIPP "the code generator" rmipp bin)
ospl_find(program IDLPP "the IDL compiler" idlpp bin)
set(ospl_libraries)
foreach(name IN LISTS OSPL_RMI_LIBRARY_NAMES)
    ospl_find(library OSPL_${name}_LIBRARY "the library" ${name} lib)
    list(APPEND ospl_libraries ${OSPL_${name}_LIBRARY})
endforeach()

if(ospl_missing)
    message(FATAL_ERROR "RMI_PROVIDER=opensplice: the installation in ${ospl_home} (OSPL_HOME) is not complete; "
                        "these are missing:${ospl_missing}")
endif()

add_library(RMI::layer INTERFACE IMPORTED GLOBAL)
foreach(folder IN LISTS ospl_header_folders)
    if(IS_DIRECTORY ${ospl_home}/${folder})
        target_include_directories(RMI::layer INTERFACE ${ospl_home}/${folder})
    endif()
endforeach()
target_include_directories(RMI::layer INTERFACE ${OSPL_DDSRMI_HEADERS} ${OSPL_OS_HEADERS})
target_link_libraries(RMI::layer INTERFACE ${ospl_libraries} Threads::Threads)

# ospl_generate(<folder> <command...>): runs a generator of the installation in a folder.
function(ospl_generate folder)
    execute_process(COMMAND ${CMAKE_COMMAND} -E env OSPL_HOME=${ospl_home} ${ARGN} WORKING_DIRECTORY ${folder}
                    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "In ${folder} failed (${result}): ${command}\n${output}")
    endif()
endfunction()

# The generator is run when the project is configured, because only its output tells which sources it makes.
function(rmi_interface_library target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "IDL" "")
    get_filename_component(idl ${arg_IDL} ABSOLUTE)
    get_filename_component(stem ${idl} NAME_WLE)
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/generated)
    file(REMOVE_RECURSE ${folder})
    file(MAKE_DIRECTORY ${folder})
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${idl} ${RMIPP})

    ospl_generate(${folder} ${RMIPP} ${OSPL_RMIPP_OPTIONS} -I${OSPL_RMI_IDL} ${idl})
    foreach(name ${stem}_InterfaceProxy.h ${stem}_Interface.h ${stem}_topics.idl)
        if(NOT EXISTS ${folder}/${name})
            message(FATAL_ERROR "${RMIPP} has not made ${name} of ${idl} in ${folder}. OSPL_RMIPP_OPTIONS gives it "
                                "further options.")
        endif()
    endforeach()
    # Some versions call it themselves.
    if(NOT EXISTS ${folder}/ccpp_${stem}_topics.h)
        ospl_generate(${folder} ${IDLPP} -S -l cpp -d . -I ${OSPL_RMI_IDL} ${stem}_topics.idl)
    endif()

    file(GLOB sources ${folder}/*.cpp)
    add_library(${target} SHARED ${sources})
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${folder}>)
    target_link_libraries(${target} PUBLIC RMI::layer)
    # The code is the generator's, so our warnings do not apply to it.
    target_compile_options(${target} PRIVATE -w)
    set_target_properties(${target} PROPERTIES CXX_STANDARD 11 CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF)
endfunction()
