# Debian packages: "cpack" in the build folder writes them to its folder packages.
#   varnelrpc   the plug-in, and the libraries that it is built on
#   zorbd       the host daemon, its systemd unit, manual page and configuration
#   varnelde    the server with a simulated sensor network
#   zorb-trust  the command that lets DDS peers in
#   zorb-dev    headers, CMake package files and pkg-config, for plug-ins of one's own
if(NOT RMI_PROVIDER STREQUAL "embedded")
    return()
endif()

# The unit reads it there, whatever the prefix; only the package has it.
install(FILES ${PROJECT_SOURCE_DIR}/packaging/zorbd.conf DESTINATION /etc/zorbd COMPONENT zorbd EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME varnelrpc)
set(CPACK_PACKAGE_CONTACT "The ${PROJECT_NAME} maintainers <maintainers@localhost>")
# Otherwise it would go before every package's own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_OUTPUT_FILE_PREFIX ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime zorbd varnelde trust development)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
if(CMAKE_LIBRARY_ARCHITECTURE STREQUAL "arm-linux-gnueabihf")
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
endif()

# debian_package(<component> <name> <section> <description> DEPENDS <packages> [SUGGESTS <packages>] [CONTROL <files>])
macro(debian_package component name section description)
    cmake_parse_arguments(package "" "" "DEPENDS;SUGGESTS;CONTROL" ${ARGN})
    string(TOUPPER ${component} upper)
    list(JOIN package_DEPENDS ", " CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS)
    list(JOIN package_SUGGESTS ", " CPACK_DEBIAN_${upper}_PACKAGE_SUGGESTS)
    list(TRANSFORM package_CONTROL PREPEND ${PROJECT_SOURCE_DIR}/packaging/debian/ OUTPUT_VARIABLE
         CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
    set(CPACK_DEBIAN_${upper}_DESCRIPTION "${description}")
    install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} RENAME copyright
            COMPONENT ${component} EXCLUDE_FROM_ALL)
endmacro()

# Named, not looked up by dpkg-shlibdeps, which knows nothing of a sysroot's packages.
set(c_and_cpp "libc6 (>= 2.34)" "libstdc++6 (>= 12)" libgcc-s1)
set(same_build "varnelrpc (= ${PROJECT_VERSION})")
debian_package(runtime varnelrpc libs "JSON-RPC plug-in for the Varnel sensor network
The plug-in that a JSON-RPC host such as zorbd loads, and the libraries that
it is built on: the host framework, the remote interface and the RMI layer."
    DEPENDS ${c_and_cpp} "libddsc0debian (>= 0.10.2)" "libjson-c5 (>= 0.15)" CONTROL varnelrpc/triggers)
debian_package(zorbd zorbd net "host daemon for JSON-RPC plug-ins
Loads plug-ins and serves their methods as JSON-RPC 2.0 over HTTP;
zorbctl calls them from the command line."
    DEPENDS ${same_build} ${c_and_cpp} "libjson-c5 (>= 0.15)" "libssl3 (>= 3.0.0)" "libcurl4 (>= 7.85)"
    CONTROL zorbd/conffiles zorbd/postinst zorbd/prerm)
debian_package(varnelde varnelde net "server with a simulated Varnel sensor network
Offers the remote interface of the Varnel plug-in, for development and tests."
    DEPENDS ${same_build} ${c_and_cpp})
debian_package(trust zorb-trust net "keys and permissions for DDS peers that trust each other
Makes an authority, certificates, signed permissions and configurations of
Cyclone DDS, so that hosts and servers talk only to peers that are known."
    DEPENDS python3 openssl)
set(CPACK_DEBIAN_TRUST_PACKAGE_ARCHITECTURE all)
debian_package(development zorb-dev libdevel "development files for JSON-RPC plug-ins
Headers, CMake package files and pkg-config for plug-ins that zorbd loads, and
the code generator for remote interfaces."
    DEPENDS ${same_build} omniidl)

include(CPack)
