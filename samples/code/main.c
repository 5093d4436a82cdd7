#include "greeting.h"
#include "sample.h"
#include "system.h"

static const char extraPath[] = "@executable_path/../PlugIns/Extra.plugin/Contents/MacOS/Extra";

int main(void)
{
    for (int hours = 0; hours < 24; hours += 6)
        puts(greetingForHour(hourAfter(9, hours)));

    void *extra = dlopen(extraPath, lazyBinding);
    if (!extra)
        return 1;
    const char *(*extraGreeting)(void) = (const char *(*)(void))dlsym(extra, "extraGreeting");
    if (!extraGreeting)
        return 1;
    puts(extraGreeting());
    return 0;
}
