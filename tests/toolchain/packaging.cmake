# Seals, packages and tickets.
target_sources(tst_toolchain PRIVATE
    cpiobuilder.cpp cpiobuilder.h
    tst_packagesigning.cpp
    tst_payload.cpp
    tst_seal.cpp
    tst_stapler.cpp
    tst_ticket.cpp
    tst_xar.cpp
    xarbuilder.cpp xarbuilder.h)
target_link_libraries(tst_toolchain PRIVATE lzma tool_package tool_packagejudgement tool_localticket tool_seal tool_stapling tool_ticketjudgement tool_timestampauthority tool_xar)
