# Writes the header that names the commit that is built, only where it has changed.
# usage: cmake -DSOURCE=FOLDER -DHEADER=FILE -P commit.cmake
execute_process(COMMAND git -C ${SOURCE} describe --always --dirty --abbrev=10 --exclude=*
    OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(NOT commit)
    set(commit "unknown")
endif()
file(CONFIGURE OUTPUT ${HEADER} CONTENT "#define SEALWRIGHT_COMMIT \"${commit}\"\n")
