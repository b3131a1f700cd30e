# Sources of others are fetched once for all build trees of a user.
# ostrel_source_cache(RESULT NAME): the folder where the sources NAME are kept, as ${RESULT}.
function(ostrel_source_cache result name)
    set(cache $ENV{XDG_CACHE_HOME})
    if(NOT cache)
        set(cache $ENV{HOME}/.cache)
    endif()
    # Two build trees may be configured at the same time. A second call of one process finds its own lock.
    get_property(locked GLOBAL PROPERTY OSTREL_SOURCE_CACHE_LOCKED)
    if(NOT locked)
        file(LOCK ${cache}/ostrel/lock GUARD PROCESS)
        set_property(GLOBAL PROPERTY OSTREL_SOURCE_CACHE_LOCKED ON)
    endif()
    set(${result} ${cache}/ostrel/${name} PARENT_SCOPE)
endfunction()
