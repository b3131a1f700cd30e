# What makes a fault harder to abuse in what users get: each option where the compiler takes it. Debug builds go
# without, because their sanitizers watch more closely and some options need optimisation.
if(CMAKE_BUILD_TYPE STREQUAL "Debug")
    return()
endif()
include(CheckCXXSourceCompiles)
include(CheckPIESupported)

# Adds compiler options if a program that is compiled and linked with them comes out.
# ostrel_harden_compiler(OPTION...)
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

# Adds a linker option, given without its prefix, if a program that is linked with it comes out.
# ostrel_harden_linker(OPTION)
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
    # Clang alone has it; GCC 12 and the linker beside it know no control-flow guard.
    ostrel_harden_compiler(-mguard=cf)
    ostrel_harden_linker(--high-entropy-va)
    ostrel_harden_linker(--dynamicbase)
    ostrel_harden_linker(--nxcompat)
else()
    ostrel_harden_compiler(-fcf-protection=full)
    ostrel_harden_linker(-z,relro)
    ostrel_harden_linker(-z,now)
endif()
