# Fuzzers of what reads signatures of code.
foreach(name machoimage codesignature requirement requirementtext entitlementsder)
    sealwright_fuzzer(${name})
    target_link_libraries(fuzz_${name} PRIVATE tool_codesignature)
endforeach()
