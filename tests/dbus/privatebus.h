#pragma once

#include <QString>

/// A message bus that belongs to the test process alone. It runs from before the first test until after the
/// last one, and is the session bus of the process and of the programs that it starts.
namespace privatebus {

/// Ends the bus, as if it had been killed, and starts it again at the same address.
void end();
void start();

/// Has the bus start the program when a message for the application comes while nobody has its name; an empty
/// command line puts an end to that.
void setActivation(const QString &commandLine);

} // namespace privatebus
