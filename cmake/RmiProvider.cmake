# Gives, whichever provider is chosen:
#   RMI::layer                      target to link for the RMI layer's published interface
#   rmi_interface_library(...)      makes an interface library from an interface file
if(RMI_PROVIDER STREQUAL "embedded")
    include(RmiInterfaceLibrary)
    include(DdsTopics)
    add_subdirectory(${PROJECT_SOURCE_DIR}/ddsrmi)
elseif(RMI_PROVIDER STREQUAL "opensplice")
    include(OpenSpliceRmi)
else()
    message(FATAL_ERROR "RMI_PROVIDER is '${RMI_PROVIDER}'; it must be 'embedded' or 'opensplice'")
endif()
