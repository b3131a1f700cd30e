# Options that make faults harder to abuse in released builds, each only if the compiler knows it. Debug builds lack
# them, because their sanitizers find more and some options need optimisation.
if(CMAKE_BUILD_TYPE STREQUAL "Debug")
    return()
endif()
include(CheckCXXSourceCompiles)
include(CheckPIESupported)

# Adds compiler options if a test program can be compiled and linked with them.
function(ostrel_harden_compiler)
    list(JOIN ARGN " " CMAKE_REQUIRED_FLAGS)
    string(MAKE_C_IDENTIFIER "OSTREL_TAKES${ARGN}" taken)
    string(APPEND CMAKE_REQUIRED_FLAGS " -Werror ${CMAKE_CXX_FLAGS_RELEASE}")
    check_cxx_source_compiles("#include <cstring>
        int main(int count, char** words) { char text[16]; std::strncpy(text, words[count - 1], 15); return text[0]; }"
        ${taken})
    if(${taken})
        # The linker's options, too: for Windows they name the library that checks frames.
        add_compile_options(${ARGN})
        add_link_options(${ARGN})
    endif()
endfunction()

# Adds a linker option, given without its prefix, if a test program can be linked with it.
function(ostrel_harden_linker option)
    set(CMAKE_REQUIRED_LINK_OPTIONS LINKER:${option})
    string(MAKE_C_IDENTIFIER "OSTREL_LINKS${option}" taken)
    check_cxx_source_compiles("int main() {}" ${taken})
    if(${taken})
        add_link_options(LINKER:${option})
    endif()
endfunction()

check_pie_supported()
ostrel_harden_compiler(-fstack-protector-strong)
ostrel_harden_compiler(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
ostrel_harden_compiler(-D_GLIBCXX_ASSERTIONS)
if(WIN32)
    # Only Clang has it; GCC 12 and its linker know no control-flow guard.
    ostrel_harden_compiler(-mguard=cf)
    ostrel_harden_linker(--high-entropy-va)
    ostrel_harden_linker(--dynamicbase)
    ostrel_harden_linker(--nxcompat)
else()
    ostrel_harden_compiler(-fcf-protection=full)
    ostrel_harden_linker(-z,relro)
    ostrel_harden_linker(-z,now)
endif()
