# Fuzzers of what reads signatures of code.
foreach(name machoimage codesignature requirement requirementtext entitlementsder)
    toolchain_fuzzer(${name} tool_codesignature)
endforeach()
