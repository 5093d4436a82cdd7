#pragma once

/// The hour of the day, 0 to 23, that is so many hours after another.
int hourAfter(int hour, int hours);
