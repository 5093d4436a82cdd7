// Without a source there would be no command that precompiles headers.
