# install_service(<component> UNITS <file>... CONFIGURATION <file> <place under /etc> ...)
# What a systemd service needs beside its program, out of packaging/. The files name the places that a system's own
# packages use; installed under another prefix they name the places there. A configuration file that is there already
# stays as it is.
function(install_service component)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "UNITS;CONFIGURATION")
    # The prefix is known no earlier than at the installation.
    install(CODE "set(sources ${PROJECT_SOURCE_DIR}/packaging)
        set(units ${arg_UNITS})
        set(configuration ${arg_CONFIGURATION})
        set(settled_folder ${CMAKE_CURRENT_BINARY_DIR}/service)
        set(libdir ${CMAKE_INSTALL_LIBDIR})" COMPONENT ${component})
    install(SCRIPT ${PROJECT_SOURCE_DIR}/cmake/install_service.cmake COMPONENT ${component})
endfunction()
