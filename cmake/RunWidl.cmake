# cmake -DCOMMAND="widl;..." -DOUTPUT=file -P RunWidl.cmake
# The interface compiler warns and goes on where it writes a library that lies, so whatever it says fails the build.
execute_process(COMMAND ${COMMAND} RESULT_VARIABLE result ERROR_VARIABLE said OUTPUT_VARIABLE said)
if(result OR said)
    file(REMOVE ${OUTPUT})
    message(FATAL_ERROR "widl: ${result}\n${said}")
endif()
