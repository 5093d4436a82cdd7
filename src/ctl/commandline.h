#pragma once

#include <QString>
#include <QStringList>

#include <limits>

namespace sealwright {

/// What a person or a script asks of the client.
struct Request {
    enum class Kind { run, help, version, wrongUse };

    Kind kind = Kind::run;
    QString problem; ///< of wrong use
    QString command;
    QStringList operands;
    QString document; ///< identifier; empty if none was given
    QString window; ///< number; empty if none was given
    bool showDialogs = false;
    bool skipStapling = false;
    QString identity; ///< empty if none was given
    qint64 page = 0; ///< of the history
    bool xml = false;
    bool json = false;
    bool junit = false;
    bool sarif = false;
    bool follow = false;
    bool unset = false; ///< set to no value
    bool all = false; ///< of what there is, in place of one
    bool close = false; ///< the document, when all is over
    double toolPause = -1; ///< seconds; below 0 for that of the preferences
    int timeout = std::numeric_limits<int>::max(); ///< milliseconds; the greatest value is none
};

/// The words without the program's name.
[[nodiscard]] Request parseCommandLine(const QStringList &words);
[[nodiscard]] QString helpText();
/// In the order of the help.
[[nodiscard]] QStringList commandNames();

} // namespace sealwright
