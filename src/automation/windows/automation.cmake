# Late binding: the rows of the contract, made by a script.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(rows ${CMAKE_CURRENT_BINARY_DIR}/script_rows.cpp)
set(contract ${PROJECT_SOURCE_DIR}/idl)
set(ORLIX_SCRIPT_DESCRIPTION orlix.idl scripts.idl contract.py scripts.py)
list(TRANSFORM ORLIX_SCRIPT_DESCRIPTION PREPEND ${contract}/ OUTPUT_VARIABLE description)
add_custom_command(OUTPUT ${rows}
    COMMAND ${Python3_EXECUTABLE} ${contract}/make_dispatch.py ${rows}
    DEPENDS ${description} ${contract}/make_dispatch.py
    COMMENT "Rows for scripts" VERBATIM)
target_sources(orlix_core PRIVATE ${rows})

# Half as large, and the time of a script's call is spent in the system and the script.
file(GLOB late_binding CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/automation/windows/*.cpp)
set_source_files_properties(${late_binding} ${rows} PROPERTIES SKIP_PRECOMPILE_HEADERS ON COMPILE_OPTIONS -Os)
