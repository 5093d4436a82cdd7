#include "sample.h"

int hourAfter(int hour, int hours)
{
    const int later = (hour + hours) % 24;
    return later < 0 ? later + 24 : later;
}
