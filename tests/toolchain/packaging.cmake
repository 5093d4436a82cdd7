# Seals, packages and tickets.
target_sources(tst_toolchain PRIVATE
    bom.cpp bom.h
    cpiobuilder.cpp cpiobuilder.h
    packagesigningtest.cpp
    payloadtest.cpp
    sealtest.cpp sealtest.h
    sealchecktest.cpp
    staplertest.cpp
    tickettest.cpp
    xartest.cpp
    xarbuilder.cpp xarbuilder.h)
target_link_libraries(tst_toolchain PRIVATE lzma tool_package tool_packagejudgement tool_authority tool_seal tool_stapling tool_ticketjudgement tool_timestampauthority tool_xar)
