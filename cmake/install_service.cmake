# Run at the installation; install_service in ServiceFiles.cmake sets sources, units, configuration, settled_folder and
# libdir.

# Where the packages of a system have their configuration; the same as GNUInstallDirs says.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(etc /etc)
else()
    set(etc ${CMAKE_INSTALL_PREFIX}/etc)
endif()

# install_settled(<file> <place>): a copy that names the places under this prefix.
function(install_settled file place)
    file(READ ${sources}/${file} text)
    string(REPLACE "/usr/bin/" "${CMAKE_INSTALL_PREFIX}/bin/" text "${text}")
    string(REPLACE "/usr/lib/" "${CMAKE_INSTALL_PREFIX}/${libdir}/" text "${text}")
    string(REPLACE "/etc/" "${etc}/" text "${text}")
    cmake_path(GET place PARENT_PATH folder)
    cmake_path(GET place FILENAME name)
    file(WRITE ${settled_folder}/${name} "${text}")
    file(INSTALL ${settled_folder}/${name} DESTINATION ${folder})
endfunction()

foreach(unit ${units})
    cmake_path(GET unit FILENAME name)
    install_settled(${unit} ${CMAKE_INSTALL_PREFIX}/lib/systemd/system/${name})
endforeach()

while(configuration)
    list(POP_FRONT configuration file place)
    if(EXISTS $ENV{DESTDIR}${etc}/${place})
        message(STATUS "Kept as it is: $ENV{DESTDIR}${etc}/${place}")
    else()
        install_settled(${file} ${etc}/${place})
    endif()
endwhile()
