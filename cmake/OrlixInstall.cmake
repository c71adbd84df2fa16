# What `cmake --install` lays out: headers, library, command line and contract, and the two ways to find them, a CMake
# package (find_package(orlix), target orlix::orlix) and pkg-config (orlix). The tree can be moved afterwards.
include(CMakePackageConfigHelpers)

set(headers ${CMAKE_INSTALL_INCLUDEDIR})
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/orlix)

if(WIN32)
    # Clients get the library's objects from the system, by class or ProgID: they link with the system's component
    # library only, and the DLL is registered where it was installed.
    add_library(orlix_client INTERFACE)
    target_include_directories(orlix_client INTERFACE $<INSTALL_INTERFACE:${headers}>)
    target_link_libraries(orlix_client INTERFACE ole32 oleaut32 shlwapi uuid)
    set_target_properties(orlix_client PROPERTIES EXPORT_NAME orlix)
    install(TARGETS orlix_client EXPORT orlixTargets)
    install(TARGETS orlix RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} ARCHIVE EXCLUDE_FROM_ALL)
    set(ORLIX_PC_CFLAGS "-I\${includedir}")
    set(ORLIX_PC_LIBS "-lole32 -loleaut32 -lshlwapi -luuid")
else()
    target_include_directories(orlix SYSTEM INTERFACE
        $<INSTALL_INTERFACE:${headers}> $<INSTALL_INTERFACE:${headers}/orlix/platform>)
    install(TARGETS orlix EXPORT orlixTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
    file(RELATIVE_PATH from_tool_to_library ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(orlix_tool PROPERTIES INSTALL_RPATH "$ORIGIN/${from_tool_to_library}")
    set(ORLIX_PC_CFLAGS "-I\${includedir} -isystem \${includedir}/orlix/platform")
    set(ORLIX_PC_LIBS "-L\${libdir} -lorlix")
endif()
install(TARGETS orlix_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/orlix DESTINATION ${headers}
    PATTERN platform EXCLUDE)
if(NOT WIN32)
    # The stand-ins for the system's headers.
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
