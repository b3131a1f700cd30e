# A folder in the build tree that contains a link to one header library of the machine and nothing else. With all of
# /usr/include, the headers of Linux would come before those of Windows.
# ostrel_header_package(TARGET NAME): whatever links TARGET can include from /usr/include/NAME.
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
