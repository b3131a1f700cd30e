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
    # By itself, for the resource compiler knows nothing of the options of the target's sources.
    add_library(${target}Version OBJECT ${script})
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:${target}Version>)
endfunction()
