# The readers of signatures and of what people import into the keychain.

toolchain_fuzzer(cms tool_cms tool_timestamps)
toolchain_fuzzer(keyimport tool_keychain)
