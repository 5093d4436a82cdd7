#pragma once

/// The sample's greeting for an hour of the day, 0 to 23. A text of the framework's own, never null.
const char *greetingForHour(int hour);
