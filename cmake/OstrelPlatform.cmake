# What differs from system to system in the build: the folders of its sources and where libraries go.
if(WIN32)
    set(OSTREL_PLATFORM Win)
    # Windows looks for a program's libraries beside it.
    set(OSTREL_LIBRARY_FOLDER bin)
    set(CMAKE_SHARED_LIBRARY_PREFIX "")
    set(CMAKE_SHARED_MODULE_PREFIX "")
    # Where Wine shows the file system of the machine that builds.
    set(OSTREL_ROOT_NAME "Z:")
    list(APPEND CMAKE_MODULE_PATH ${CMAKE_SOURCE_DIR}/cmake/Windows)
    add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00)
    include(RuntimeLibraries)
else()
    set(OSTREL_PLATFORM Linux)
    set(OSTREL_LIBRARY_FOLDER lib)
    # The plug-in and the libraries find one another beside themselves, the program one folder over.
    set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
    set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/../lib")
endif()
