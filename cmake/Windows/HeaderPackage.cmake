# A folder in the build tree that shows one header library of the machine and nothing else: all of /usr/include
# would put the headers of Linux before those of Windows.
# ostrel_header_package(TARGET NAME): /usr/include/NAME becomes visible to who links TARGET.
function(ostrel_header_package target name)
    if(TARGET ${target})
        return()
    endif()
    set(shown ${CMAKE_BINARY_DIR}/headers/${name})
    file(MAKE_DIRECTORY ${shown})
    file(CREATE_LINK /usr/include/${name} ${shown}/${name} SYMBOLIC)
    add_library(${target} INTERFACE IMPORTED GLOBAL)
    target_include_directories(${target} SYSTEM INTERFACE ${shown})
endfunction()
