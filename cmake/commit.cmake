# Writes the header that names the commit that is built, only where it has changed. A source archive, which has no
# repository, brings it along.
# usage: cmake -DSOURCE=FOLDER -DHEADER=FILE -P commit.cmake
include(${CMAKE_CURRENT_LIST_DIR}/archived.cmake)
if(archived_commit MATCHES "^[0-9a-f]+$")
    string(SUBSTRING ${archived_commit} 0 10 commit)
else()
    execute_process(COMMAND git -C ${SOURCE} describe --always --dirty --abbrev=10 --exclude=*
        OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
if(NOT commit)
    set(commit "unknown")
endif()
file(CONFIGURE OUTPUT ${HEADER} CONTENT "#define SEALWRIGHT_COMMIT \"${commit}\"\n")
