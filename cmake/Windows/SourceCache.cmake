# Sources of others are fetched once for all build trees of a user.
# ostrel_source_cache(RESULT NAME): the folder where the sources NAME are kept, as ${RESULT}.
function(ostrel_source_cache result name)
    set(cache $ENV{XDG_CACHE_HOME})
    if(NOT cache)
        set(cache $ENV{HOME}/.cache)
    endif()
    set(${result} ${cache}/ostrel/${name} PARENT_SCOPE)
endfunction()
