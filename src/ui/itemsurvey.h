#pragma once

#include <QString>
#include <QStringList>

class QJsonObject;

namespace platform {
class FileService;
}

namespace sealwright {

/// What takes a walk through an item to know.
struct ItemSurvey {
    qint64 bytes = 0; ///< of all files; 0 where nothing is known
    QStringList architectures; ///< of the main executable, as lipo names them; empty if it is no Mach-O file
    qsizetype places = 0; ///< in which an app or a plug-in is signed, itself among them; 0 for other items
    QString identifier = {}; ///< of an installer package; empty where it is not known
    QString version = {}; ///< likewise
    QString volume = {}; ///< the name of a disk image's volume; likewise

    bool operator==(const ItemSurvey &) const = default;
};

/// Walks the item, and gives up beyond a number of files that no item has. Any thread but the main one: a
/// large item takes seconds.
[[nodiscard]] ItemSurvey surveyOf(const platform::FileService &files, const QString &path);

/// The same out of a look at the item, in the form of docs/scripting.md with its `size`. Pure.
[[nodiscard]] ItemSurvey surveyIn(const QJsonObject &examination);

/// The architectures of Mach-O code by its first bytes, in the order of the file. Public document: Apple's
/// <mach-o/loader.h>, <mach-o/fat.h> and <mach/machine.h>. Pure.
[[nodiscard]] QStringList architecturesIn(QByteArrayView bytes);

} // namespace sealwright
