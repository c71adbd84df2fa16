# The type library as text: test_windows compares it with types.txt; write_type_library, which scripts/type-library
# runs, writes that.
set(folder ${CMAKE_CURRENT_LIST_DIR})
add_executable(write_type_library ${folder}/write.cpp ${folder}/description.cpp)
target_include_directories(write_type_library PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(write_type_library PRIVATE orlix_interface)

set(rows ${CMAKE_CURRENT_BINARY_DIR}/contract_rows.inc)
set(contract ${PROJECT_SOURCE_DIR}/idl)
find_package(Python3 REQUIRED COMPONENTS Interpreter)
add_custom_command(OUTPUT ${rows}
    COMMAND ${Python3_EXECUTABLE} ${folder}/contract_rows.py ${rows}
    DEPENDS ${folder}/contract_rows.py ${contract}/contract.py ${contract}/orlix.idl
    COMMENT "Rows of the contract" VERBATIM)
target_sources(test_windows PRIVATE ${folder}/description.cpp ${rows})
target_include_directories(test_windows PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
target_compile_definitions(test_windows PRIVATE ORLIX_TYPE_LIBRARY_TEXTS="${folder}")
