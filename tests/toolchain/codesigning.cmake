# The tests of code signatures.
target_sources(tst_toolchain PRIVATE
    apptotest.h
    coveredbytes.cpp coveredbytes.h
    machobuilder.cpp machobuilder.h
    changedbytestest.cpp
    codesigntest.cpp codesigntest.h
    codesignitemstest.cpp
    codesignaturetest.cpp signatureplan.h
    machosigningtest.cpp
    codeverifytest.cpp codeverifytest.h
    codechangestest.cpp
    codefieldstest.cpp
    signedlayouttest.cpp
    signersrequirementtest.cpp)
target_link_libraries(tst_toolchain PRIVATE tool_codesignature tool_codeverification)

# Not a test: script/verify compares what it makes of other signers' files.
add_executable(resign EXCLUDE_FROM_ALL resign.cpp)
target_link_libraries(resign PRIVATE sealwright_options tool_codesignature)
