#include "greeting.h"

const char *greetingForHour(int hour)
{
    if (hour < 12)
        return "Good morning.";
    return hour < 18 ? "Good afternoon." : "Good evening.";
}
