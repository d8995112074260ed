# What find_package(zorb) and pkg-config read. Only our own RMI layer can be handed on with it.
if(NOT RMI_PROVIDER STREQUAL "embedded")
    return()
endif()

include(CMakePackageConfigHelpers)

set(zorb_package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/zorb)
install(EXPORT zorb FILE zorbTargets.cmake NAMESPACE zorb:: DESTINATION ${zorb_package_folder} COMPONENT zorb-dev)
set(zorb_data_folder ${CMAKE_INSTALL_DATADIR}/zorb)
configure_package_config_file(${PROJECT_SOURCE_DIR}/packaging/cmake/zorbConfig.cmake.in
    ${PROJECT_BINARY_DIR}/zorbConfig.cmake INSTALL_DESTINATION ${zorb_package_folder} PATH_VARS zorb_data_folder)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zorbConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zorbConfig.cmake ${PROJECT_BINARY_DIR}/zorbConfigVersion.cmake
        DESTINATION ${zorb_package_folder} COMPONENT zorb-dev)

# The installed tree may be moved, so its files name each other's places by the way between them.
file(RELATIVE_PATH zorb_prefix_from_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${PROJECT_SOURCE_DIR}/packaging/pkgconfig/zorb.pc.in ${PROJECT_BINARY_DIR}/zorb.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zorb.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT zorb-dev)
install(FILES ${PROJECT_SOURCE_DIR}/docs/man/zorb-plugin.7 DESTINATION ${CMAKE_INSTALL_MANDIR}/man7 COMPONENT zorb-dev)

# The packaged examples. What they run on is the loopback interface only.
set(zorb_example_folder ${CMAKE_INSTALL_DATADIR}/doc/zorb-dev/examples)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/greeter ${PROJECT_SOURCE_DIR}/examples/thermostat
        DESTINATION ${zorb_example_folder} COMPONENT zorb-dev)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/cyclonedds-loopback.xml DESTINATION ${zorb_example_folder}
        COMPONENT zorb-dev)
