#pragma once

// The few functions of the C library that the sample code calls. Declared here since the host that builds the
// sample has no macOS headers.

int puts(const char *text);
void *dlopen(const char *path, int mode);
void *dlsym(void *handle, const char *symbol);

enum { lazyBinding = 1 };
