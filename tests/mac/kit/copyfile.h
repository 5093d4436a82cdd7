#pragma once
#include <cstdint>
typedef struct _copyfile_state *copyfile_state_t;
typedef uint32_t copyfile_flags_t;
extern "C" int fcopyfile(int from, int to, copyfile_state_t state, copyfile_flags_t flags);
#define COPYFILE_XATTR (1 << 2)
