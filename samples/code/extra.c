#include "sample.h"

const char *extraGreeting(void);

const char *extraGreeting(void)
{
    return hourAfter(22, 4) == 2 ? "Good night." : "What time is it?";
}
