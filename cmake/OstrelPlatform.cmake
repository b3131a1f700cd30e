# What differs from system to system in the build: the folders of its sources, where libraries go, where what others
# link against goes, and which parts of Boost they need for it.
if(WIN32)
    set(OSTREL_PLATFORM Win)
    # Windows looks for a program's libraries beside it.
    set(OSTREL_LIBRARY_FOLDER bin)
    set(OSTREL_LINK_FOLDER ${CMAKE_INSTALL_LIBDIR})
    set(CMAKE_SHARED_LIBRARY_PREFIX "")
    set(CMAKE_SHARED_MODULE_PREFIX "")
    # Where Wine shows the file system of the machine that builds.
    set(OSTREL_ROOT_NAME "Z:")
    list(APPEND CMAKE_MODULE_PATH ${CMAKE_SOURCE_DIR}/cmake/Windows)
    add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00)
    include(RuntimeLibraries)
    include(VersionResource)
else()
    # Here files carry no version of their own.
    function(ostrel_version_resource)
    endfunction()
    set(OSTREL_PLATFORM Linux)
    # A folder of their own, for the libraries belong to plug-ins and their host alone.
    set(OSTREL_LIBRARY_FOLDER ${CMAKE_INSTALL_LIBDIR}/ostrel)
    set(OSTREL_LINK_FOLDER ${OSTREL_LIBRARY_FOLDER})
    set(OSTREL_BOOST_COMPONENTS COMPONENTS filesystem)
    # The plug-in and the libraries find one another beside themselves; the program has a path of its own.
    set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
    set(CMAKE_INSTALL_RPATH "$ORIGIN")
endif()
