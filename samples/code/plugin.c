#include "sample.h"

int hourOfTheSeal(int hour);

int hourOfTheSeal(int hour)
{
    return hourAfter(hour, 1);
}
