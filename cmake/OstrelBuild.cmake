# How every target of this project is built: warnings, platform folders, libraries, tests.
include(GenerateExportHeader)

add_library(OstrelOptions INTERFACE)
target_compile_options(OstrelOptions INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align -Woverloaded-virtual
    -Wconversion -Wno-sign-conversion -Wformat=2 -Wimplicit-fallthrough -Wextra-semi)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(OstrelOptions INTERFACE -Wduplicated-cond -Wlogical-op -Wuseless-cast)
endif()

# The sources of one folder and of its platform folder, as ${result}.
function(ostrel_sources result folder)
    file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp ${folder}_${OSTREL_PLATFORM}/*.cpp)
    set(${result} ${sources} PARENT_SCOPE)
endfunction()

# One of the libraries that a host gives its plug-ins: Include/<name>/, Src/, and the same with the system's name.
# ostrel_host_library(NAME DESCRIPTION [PUBLIC libraries] [PRIVATE libraries])
function(ostrel_host_library name description)
    cmake_parse_arguments(arg "" "" "PUBLIC;PRIVATE" ${ARGN})
    ostrel_sources(sources ${CMAKE_CURRENT_SOURCE_DIR}/Src)
    add_library(${name} SHARED ${sources})
    # Hosts and plug-ins must be of the same release, so the SONAME has the release.
    set_target_properties(${name} PROPERTIES
        VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
    string(TOUPPER ${name} upper)
    generate_export_header(${name} EXPORT_MACRO_NAME ${upper}_EXPORT
        EXPORT_FILE_NAME ${CMAKE_CURRENT_BINARY_DIR}/Include/${name}/Export.h)
    target_include_directories(${name}
        PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_BINARY_DIR}/Include> PRIVATE Src Src_${OSTREL_PLATFORM})
    target_link_libraries(${name} PUBLIC ${arg_PUBLIC} PRIVATE OstrelOptions ${arg_PRIVATE})
    ostrel_version_resource(${name} ${description})
    ostrel_public_library(${name})
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/Include/${name}/Export.h DESTINATION include/ostrel/${name}
        COMPONENT development)
endfunction()

# Libraries for other hosts and plug-ins: installed with their headers, and part of the package OstrelHost.
function(ostrel_public_library name)
    target_include_directories(${name}
        PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/Include>
        $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/Include_${OSTREL_PLATFORM}>
        $<INSTALL_INTERFACE:include/ostrel>)
    target_compile_features(${name} PUBLIC cxx_std_20)
    install(TARGETS ${name} EXPORT OstrelHost
        LIBRARY DESTINATION ${OSTREL_LIBRARY_FOLDER} COMPONENT program NAMELINK_COMPONENT development
        RUNTIME DESTINATION bin
        ARCHIVE DESTINATION ${OSTREL_LINK_FOLDER} COMPONENT development)
    foreach(folder Include Include_${OSTREL_PLATFORM})
        if(IS_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/${folder})
            install(DIRECTORY ${folder}/ DESTINATION include/ostrel COMPONENT development
                FILES_MATCHING PATTERN "*.h")
        endif()
    endforeach()
endfunction()

# Puts data files into the share folder of the build tree and of the installation.
# ostrel_share(FILE...)
function(ostrel_share)
    foreach(file ${ARGN})
        get_filename_component(name ${file} NAME)
        configure_file(${file} ${OSTREL_SHARE_DIRECTORY}/${name} COPYONLY)
    endforeach()
    install(FILES ${ARGN} DESTINATION share/ostrel)
endfunction()

# Tests run once, so it takes less time to compile them without optimisation. For Windows they need a little of it:
# without it, a batch has so many sections that linking it takes minutes.
set(OSTREL_TEST_OPTIONS $<IF:$<PLATFORM_ID:Windows>,-Og,-O0>)

# A test program from every source of the current folder, of its platform folder (such as Src_Linux) and of FOLDERS.
function(ostrel_test name)
    cmake_parse_arguments(arg "" "" "FOLDERS;LIBRARIES;DEFINITIONS" ${ARGN})
    add_executable(${name})
    list(TRANSFORM arg_FOLDERS PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    foreach(folder ${CMAKE_CURRENT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR}/Src ${arg_FOLDERS})
        ostrel_sources(sources ${folder})
        target_sources(${name} PRIVATE ${sources})
    endforeach()
    target_link_libraries(${name} PRIVATE OstrelOptions ${arg_LIBRARIES} GTest::gmock GTest::gtest GTest::gtest_main)
    target_compile_definitions(${name} PRIVATE ${arg_DEFINITIONS})
    target_compile_options(${name} PRIVATE ${OSTREL_TEST_OPTIONS})
    if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # In a batch GCC takes sources for headers. There it would warn of fixtures in unnamed namespaces.
        target_compile_options(${name} PRIVATE -Wno-subobject-linkage)
    endif()
    target_precompile_headers(${name} REUSE_FROM OstrelTestHeaders)
    if(CMAKE_CROSSCOMPILING)
        # An emulated process starts slowly, so one process runs all tests of the program.
        add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
        set_tests_properties(${name} PROPERTIES TIMEOUT 900)
    else()
        include(GoogleTest)
        gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 900)
    endif()
endfunction()
