#pragma once

#include <QByteArray>
#include <QString>

/// A desktop session with the application in it.
namespace session {

struct Ended {
    int status; ///< of the commands
    QByteArray output;
    QByteArray error;
};

/// Starts the application on a bus of its own, with a tool root whose codesign writes down what it is given
/// in the file `signed` and signs nothing, and runs commands of a shell, which end at the first that fails. W
/// is the folder, for files of the commands, and BIN where the programs are.
[[nodiscard]] Ended run(const QString &folder, const QByteArray &commands);

} // namespace session
