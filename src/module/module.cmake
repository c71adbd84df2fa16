# What the module carries beside its code: registration scripts everywhere; type library, bitmap and version on Windows.
file(GLOB registration_scripts CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/module/registration/*.rgs)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${registration_scripts})

if(WIN32)
    include(${CMAKE_CURRENT_SOURCE_DIR}/module/windows/resources.cmake)
else()
    # One string literal for each script, numbered by its file's name.
    set(texts "")
    foreach(script IN LISTS registration_scripts)
        get_filename_component(name ${script} NAME)
        string(REGEX MATCH "^[0-9]+" number ${name})
        file(READ ${script} text)
        string(APPEND texts "    {${number}, R\"script(${text})script\"},\n")
    endforeach()
    file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/embedded_scripts.cpp @ONLY CONTENT
        "#include \"module/native/registration_texts.hpp\"

namespace orlix {

const EmbeddedScript kEmbeddedScripts[] = {
@texts@    {0, {}},
};

}  // namespace orlix
")
    target_sources(orlix_core PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/embedded_scripts.cpp)
    target_link_libraries(orlix_core PUBLIC ${CMAKE_DL_LIBS})
endif()
