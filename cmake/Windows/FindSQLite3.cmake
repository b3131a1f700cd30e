# SQLite for Windows: the sources of the version that the package libsqlite3-dev has, made into its one large file.
include(SourceCache)
if(NOT TARGET SQLite::SQLite3)
    enable_language(C)
    execute_process(COMMAND dpkg-query --show --showformat=\${source:Version} libsqlite3-dev
        OUTPUT_VARIABLE version COMMAND_ERROR_IS_FATAL ANY)
    ostrel_source_cache(folder sqlite3_${version})
    if(NOT EXISTS ${folder})
        message(STATUS "Making SQLite ${version} from its sources")
        set(sources ${CMAKE_BINARY_DIR}/sqlite3-sources)
        execute_process(COMMAND ${CMAKE_SOURCE_DIR}/cmake/debian-source sqlite3 ${version} ${sources}
            COMMAND_ERROR_IS_FATAL ANY)
        # These tools run on the building machine. Their output is the same for every system.
        foreach(command "./configure;--quiet" "make;--silent;sqlite3.c")
            execute_process(COMMAND ${CMAKE_COMMAND} -E env --unset=CC --unset=CXX ${command}
                WORKING_DIRECTORY ${sources} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
        endforeach()
        file(COPY ${sources}/sqlite3.c ${sources}/sqlite3.h DESTINATION ${folder}.unfinished)
        file(RENAME ${folder}.unfinished ${folder})
        file(REMOVE_RECURSE ${sources})
    endif()
    add_library(SQLite STATIC ${folder}/sqlite3.c)
    add_library(SQLite::SQLite3 ALIAS SQLite)
    target_compile_options(SQLite PRIVATE -w)
    target_include_directories(SQLite SYSTEM INTERFACE ${folder})
endif()
set(SQLite3_FOUND TRUE)
