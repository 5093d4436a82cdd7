#include "greeting.h"
#include "system.h"

int main(int argc, char **argv)
{
    (void)argv;
    puts(greetingForHour(argc));
    return 0;
}
