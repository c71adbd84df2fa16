# Makes from the headers of the contract and of the system's interfaces, in ${ORLIX_INTERFACES}:
#   contract_methods.inc   ORLIX_METHOD(interface, method) for every method that objects of the library answer
#   refusing_methods.inc   Refusing<I> for every interface (support/refusing.hpp)
# What the contract gains is called by the fuzzer and refused by the tests' clients from the next build on, without a
# list to keep.
include_guard(GLOBAL)
set(ORLIX_INTERFACES ${PROJECT_BINARY_DIR}/tests/interfaces)
set(headers ${PROJECT_SOURCE_DIR}/include/orlix/platform/component_abi.h ${PROJECT_SOURCE_DIR}/include/orlix/orlix.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${headers})
set(unanswered ICreateErrorInfo ISequentialStream IStream)
if(NOT WIN32)
    list(APPEND unanswered IDispatch)
endif()

set(methods "")
set(refusing "")
set(name "[A-Za-z0-9_]+")
foreach(header IN LISTS headers)
    file(READ ${header} text)
    string(REGEX REPLACE "//[^\n]*" "" text "${text}")
    string(REGEX REPLACE "[ \n]+" " " text "${text}")
    set(method "virtual HRESULT STDMETHODCALLTYPE ${name}[^=]*= 0")
    string(REGEX MATCHALL "${name} : (public )?I${name} {|${method}" declarations "${text}")
    foreach(declaration IN LISTS declarations)
        if(declaration MATCHES "(${name}) : (public )?(I${name}) {")
            set(interface ${CMAKE_MATCH_1})
            string(APPEND refusing "};\ntemplate <class Final>\nstruct Refusing<${interface}, Final> : "
                "Refusing<${CMAKE_MATCH_3}, Final> {\n    static bool Answers(REFIID iid) noexcept { return iid == "
                "__uuidof(${interface}) || Refusing<${CMAKE_MATCH_3}, Final>::Answers(iid); }\n")
        elseif(interface AND declaration MATCHES "(${name})(\\(.*\\))")
            string(APPEND refusing "    HRESULT STDMETHODCALLTYPE ${CMAKE_MATCH_1}${CMAKE_MATCH_2} noexcept override { "
                "return this->Refused(\"${CMAKE_MATCH_1}\"); }\n")
            if(NOT interface IN_LIST unanswered)
                string(APPEND methods "ORLIX_METHOD(${interface}, ${CMAKE_MATCH_1})\n")
            endif()
        endif()
    endforeach()
endforeach()
string(REGEX REPLACE "^};\n" "" refusing "${refusing}};\n")
file(CONFIGURE OUTPUT ${ORLIX_INTERFACES}/contract_methods.inc CONTENT "${methods}" @ONLY)
file(CONFIGURE OUTPUT ${ORLIX_INTERFACES}/refusing_methods.inc CONTENT "${refusing}" @ONLY)
