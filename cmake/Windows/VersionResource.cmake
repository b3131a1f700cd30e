# What Windows shows of a file under its properties: maker, version, purpose.
enable_language(RC)

# ostrel_version_resource(TARGET DESCRIPTION)
function(ostrel_version_resource target description)
    set(type VFT_DLL)
    set(suffix .dll)
    get_target_property(kind ${target} TYPE)
    if(kind STREQUAL "EXECUTABLE")
        set(type VFT_APP)
        set(suffix .exe)
    endif()
    set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}Version.rc)
    configure_file(${CMAKE_SOURCE_DIR}/cmake/Windows/VersionResource.rc.in ${script} @ONLY)
    # In a target of its own, because the resource compiler does not know the options of the target's sources.
    add_library(${target}Version OBJECT ${script})
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:${target}Version>)
endfunction()
