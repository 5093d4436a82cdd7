# The notary service and its client. A program of its own, since it waits more than it works.
sealwright_test(tst_notary
    bundlebuilder.cpp bundlebuilder.h
    machobuilder.cpp machobuilder.h
    notaryfixture.cpp notaryfixture.h
    toolfixture.cpp toolfixture.h
    relay.cpp relay.h
    foreignrepliestest.cpp
    notaryfaultstest.cpp
    notaryservicetest.cpp
    notarywaystest.cpp
    notaryusetest.cpp
    piecedigesttest.cpp
    submissionstest.cpp
    ${PROJECT_SOURCE_DIR}/toolchain/notaryd/multipart.cpp ${PROJECT_SOURCE_DIR}/toolchain/notaryd/partlist.cpp
    ${PROJECT_SOURCE_DIR}/toolchain/notaryd/submissions.cpp ${PROJECT_SOURCE_DIR}/toolchain/notaryd/submissions.h
    ticketfaultstest.cpp)
target_link_libraries(tst_notary PRIVATE Qt6::Core slw_propertylist tool_notary tool_notaryclient tool_state)
target_compile_definitions(tst_notary PRIVATE TOOLCHAIN_ROOT="${SEALWRIGHT_TOOLCHAIN}"
    PARTNERS_SCRIPT="${CMAKE_CURRENT_SOURCE_DIR}/notarypartners.py"
    SECRETS_SCRIPT="${CMAKE_CURRENT_SOURCE_DIR}/notarysecrets.py"
    RECOMPUTE_SCRIPT="${CMAKE_CURRENT_SOURCE_DIR}/notaryrecompute.py")
add_dependencies(tst_notary toolchain)
