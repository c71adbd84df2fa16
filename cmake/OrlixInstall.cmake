# What `cmake --install` lays out: headers, library, command line and contract, and the two ways to find them, a CMake
# package (find_package(orlix), target orlix::orlix) and pkg-config (orlix). The tree can be moved afterwards.
include(CMakePackageConfigHelpers)

set(headers ${CMAKE_INSTALL_INCLUDEDIR})
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/orlix)

if(WIN32)
    # orlix::orlix is what clients compile and link with; the DLL is registered where it was installed.
    set_target_properties(orlix_interface PROPERTIES EXPORT_NAME orlix)
    install(TARGETS orlix_interface EXPORT orlixTargets)
    install(TARGETS orlix RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} ARCHIVE EXCLUDE_FROM_ALL)
    set(ORLIX_PC_LIBS "-lole32 -loleaut32 -lshlwapi -luuid")
else()
    set_target_properties(orlix_interface PROPERTIES EXPORT_NAME interface)
    install(TARGETS orlix orlix_interface EXPORT orlixTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
    set(ORLIX_PC_LIBS "-L\${libdir} -lorlix")
endif()
if(TARGET orlix_tool)
    file(RELATIVE_PATH from_tool_to_library ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(orlix_tool PROPERTIES INSTALL_RPATH "$ORIGIN/${from_tool_to_library}")
    install(TARGETS orlix_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    if(WIN32)
        install(TARGETS orlixscript RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    endif()
endif()

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/orlix DESTINATION ${headers}
    PATTERN platform EXCLUDE)
if(NOT WIN32)
    # What stands in for the system's headers.
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/orlix/platform DESTINATION ${headers}/orlix)
endif()
install(FILES ${PROJECT_SOURCE_DIR}/idl/orlix.idl DESTINATION ${CMAKE_INSTALL_DATADIR}/orlix)

install(EXPORT orlixTargets NAMESPACE orlix:: DESTINATION ${package})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/orlixConfig.cmake.in ${PROJECT_BINARY_DIR}/orlixConfig.cmake
    INSTALL_DESTINATION ${package})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/orlixConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/orlixConfig.cmake ${PROJECT_BINARY_DIR}/orlixConfigVersion.cmake
    DESTINATION ${package})

file(RELATIVE_PATH ORLIX_PC_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${CMAKE_CURRENT_LIST_DIR}/orlix.pc.in ${PROJECT_BINARY_DIR}/orlix.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orlix.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
