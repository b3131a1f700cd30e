# Windows for Clang, with the standard library of the cross compiler. clang-tidy needs only the compile commands, so
# nothing is linked.
include(${CMAKE_CURRENT_LIST_DIR}/Toolchain.cmake)
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=include
    OUTPUT_VARIABLE headers OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER clang)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_FLAGS_INIT
    "-stdlib++-isystem ${headers}/c++ -isystem ${headers}/c++/x86_64-w64-mingw32")
set(CMAKE_STRIP x86_64-w64-mingw32-strip CACHE FILEPATH "")
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
