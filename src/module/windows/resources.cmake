# The resources of orlix.dll: type library, registration scripts, toolbox bitmap, version. And its exported names.
set(idl ${PROJECT_SOURCE_DIR}/idl/orlix.idl)
set(ORLIX_TYPE_LIBRARY ${CMAKE_CURRENT_BINARY_DIR}/orlix.tlb)

# What the interface description imports comes with Wine: its descriptions of the system's interfaces, and stdole2.tlb,
# one file for both bit widths.
find_path(ORLIX_IDL_IMPORTS oaidl.idl
    PATHS /usr/include/wine/wine/windows /usr/include/wine/windows /usr/include/wine-development/wine/windows
    NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
file(GLOB stdole /usr/lib/*/wine/*/stdole2.tlb /usr/lib/wine/*/stdole2.tlb /usr/lib/*/wine/stdole2.tlb)
list(TRANSFORM stdole REPLACE "/stdole2.tlb$" "")
find_path(ORLIX_TYPE_LIBRARY_IMPORTS stdole2.tlb
    PATHS ${stdole} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)

# The library says what each method does, in the first sentence of its comment, and what scripts see.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(described ${CMAKE_CURRENT_BINARY_DIR}/described.idl)
list(TRANSFORM ORLIX_SCRIPT_DESCRIPTION PREPEND ${PROJECT_SOURCE_DIR}/idl/ OUTPUT_VARIABLE description)
add_custom_command(OUTPUT ${described}
    COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/idl/make_type_library.py ${described}
    DEPENDS ${description} ${PROJECT_SOURCE_DIR}/idl/make_type_library.py
    COMMENT "Help strings and dispatch interfaces" VERBATIM)

math(EXPR bits "8 * ${CMAKE_SIZEOF_VOID_P}")
set(widl ${ORLIX_WIDL} -m${bits} -I ${ORLIX_IDL_IMPORTS} -L ${ORLIX_TYPE_LIBRARY_IMPORTS}
    -t -o ${ORLIX_TYPE_LIBRARY} ${described})
add_custom_command(OUTPUT ${ORLIX_TYPE_LIBRARY}
    COMMAND ${CMAKE_COMMAND} "-DCOMMAND=${widl}" -DOUTPUT=${ORLIX_TYPE_LIBRARY}
            -P ${PROJECT_SOURCE_DIR}/cmake/RunWidl.cmake
    DEPENDS ${described} ${PROJECT_SOURCE_DIR}/cmake/RunWidl.cmake
    COMMENT "Type library" VERBATIM)

# The classes without the registry, for programs that have the library in their folder.
set(ORLIX_MANIFEST ${CMAKE_CURRENT_BINARY_DIR}/orlix.manifest)
set(make_manifest ${CMAKE_CURRENT_SOURCE_DIR}/module/windows/make_manifest.py)
add_custom_command(OUTPUT ${ORLIX_MANIFEST}
    COMMAND ${Python3_EXECUTABLE} ${make_manifest} ${ORLIX_MANIFEST} ${PROJECT_VERSION}.0 ${bits}
            ${registration_scripts}
    DEPENDS ${make_manifest} ${registration_scripts}
    COMMENT "Manifest" VERBATIM)

set(ORLIX_SCRIPT_RESOURCES "")
foreach(script IN LISTS registration_scripts)
    get_filename_component(name ${script} NAME)
    string(REGEX MATCH "^[0-9]+" number ${name})
    string(APPEND ORLIX_SCRIPT_RESOURCES "${number} REGISTRY \"${script}\"\n")
endforeach()
configure_file(${CMAKE_CURRENT_SOURCE_DIR}/module/windows/orlix.rc.in ${CMAKE_CURRENT_BINARY_DIR}/orlix.rc @ONLY)
set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/orlix.rc PROPERTIES
    OBJECT_DEPENDS "${ORLIX_TYPE_LIBRARY};${ORLIX_MANIFEST};${registration_scripts}")

enable_language(RC)
target_sources(orlix PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/orlix.rc ${CMAKE_CURRENT_SOURCE_DIR}/module/windows/orlix.def)
# Callers look for the plain names; the 32-bit compiler decorates them.
target_link_options(orlix PRIVATE -Wl,--enable-stdcall-fixup)
set_target_properties(orlix PROPERTIES PREFIX "" OUTPUT_NAME orlix)
