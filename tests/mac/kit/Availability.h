#pragma once
#include <AvailabilityMacros.h>
