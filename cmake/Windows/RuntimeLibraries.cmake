# Copies the compiler's runtime libraries beside the programs, in the build tree and in the installation. The last one
# has the stack checks.
foreach(library libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll libssp-0.dll)
    execute_process(COMMAND ${OSTREL_RUNTIME_COMPILER} -print-file-name=${library}
        OUTPUT_VARIABLE original OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    set(stripped ${CMAKE_BINARY_DIR}/bin/${library})
    if(NOT EXISTS ${stripped})
        file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
        execute_process(COMMAND ${CMAKE_STRIP} -o ${stripped} ${original} COMMAND_ERROR_IS_FATAL ANY)
    endif()
    install(FILES ${stripped} DESTINATION bin)
endforeach()
