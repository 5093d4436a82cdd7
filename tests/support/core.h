#pragma once

#include "texts.h" // which lies beside this, wherever this is included from

namespace sealwright {
}

/// Tests speak of what they test as it speaks of itself. The programs of sealwright_test have this line
/// without asking for it.
using namespace sealwright;
