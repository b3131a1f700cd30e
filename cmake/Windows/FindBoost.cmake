# Boost for Windows: the machine's own headers, and the few sources of Boost.Filesystem that `path` needs.
include(HeaderPackage)
include(SourceCache)
ostrel_header_package(Boost::headers boost)
set(Boost_FOUND TRUE)

if(filesystem IN_LIST Boost_FIND_COMPONENTS AND NOT TARGET Boost::filesystem)
    # The sources of the version that the package libboost-dev has.
    set(version 1.74.0+ds1-21)
    ostrel_source_cache(folder boost1.74_${version})
    set(files path.cpp path_traits.cpp codecvt_error_category.cpp windows_file_codecvt.cpp
        windows_file_codecvt.hpp platform_config.hpp)
    list(TRANSFORM files PREPEND libs/filesystem/src/)
    if(NOT EXISTS ${folder})
        message(STATUS "Fetching the sources of Boost ${version}")
        execute_process(COMMAND ${CMAKE_SOURCE_DIR}/cmake/debian-source boost1.74 ${version} ${folder} ${files}
            COMMAND_ERROR_IS_FATAL ANY)
    endif()
    list(FILTER files INCLUDE REGEX "cpp$")
    list(TRANSFORM files PREPEND ${folder}/)
    add_library(BoostFilesystem STATIC ${files})
    add_library(Boost::filesystem ALIAS BoostFilesystem)
    target_compile_definitions(BoostFilesystem PUBLIC BOOST_ALL_NO_LIB BOOST_FILESYSTEM_STATIC_LINK)
    target_compile_options(BoostFilesystem PRIVATE -w)
    target_link_libraries(BoostFilesystem PUBLIC Boost::headers)
    # Programs that use the installed libraries need only the headers of Boost.
    install(TARGETS BoostFilesystem EXPORT OstrelHost ARCHIVE DESTINATION ${OSTREL_LINK_FOLDER})
endif()
