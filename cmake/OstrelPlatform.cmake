# What differs between the systems in the build: the platform folders, the places of libraries and link files, and the
# parts of Boost that linking needs.
if(WIN32)
    set(OSTREL_PLATFORM Win)
    # Windows searches for a program's libraries in the program's folder.
    set(OSTREL_LIBRARY_FOLDER bin)
    set(OSTREL_LINK_FOLDER ${CMAKE_INSTALL_LIBDIR})
    set(CMAKE_SHARED_LIBRARY_PREFIX "")
    set(CMAKE_SHARED_MODULE_PREFIX "")
    # The place where Wine shows the file system of the building machine.
    set(OSTREL_ROOT_NAME "Z:")
    list(APPEND CMAKE_MODULE_PATH ${CMAKE_SOURCE_DIR}/cmake/Windows)
    add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00)
    include(RuntimeLibraries)
    include(VersionResource)
else()
    # On Linux files have no version resource.
    function(ostrel_version_resource)
    endfunction()
    set(OSTREL_PLATFORM Linux)
    # A folder of their own, because only plug-ins and their host use these libraries.
    set(OSTREL_LIBRARY_FOLDER ${CMAKE_INSTALL_LIBDIR}/ostrel)
    set(OSTREL_LINK_FOLDER ${OSTREL_LIBRARY_FOLDER})
    set(OSTREL_BOOST_COMPONENTS COMPONENTS filesystem)
    # The plug-in and the libraries find each other in their own folder. The program needs another path to them.
    set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
    set(CMAKE_INSTALL_RPATH "$ORIGIN")
endif()
