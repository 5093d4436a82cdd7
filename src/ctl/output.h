#pragma once

#include <QJsonValue>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace sealwright {

/// What the client prints.
namespace output {

/// The lines that a value is printed as: none for no value, an object as the last element of its path, bounds
/// as four numbers, a list one line an entry.
[[nodiscard]] QStringList lines(const QVariant &value);
/// Lines that are file URLs as paths.
[[nodiscard]] QStringList filesAsPaths(QStringList lines);

void print(const QStringList &lines);
/// As it stands; a line end is added where the text has none.
void printText(const QString &text);
/// One line, the columns of which are separated by tabs. A line end in one of them becomes a blank.
void printColumns(const QStringList &columns);
/// An object or a list.
void printJson(const QJsonValue &value);
/// What kept the output up to now from being written; null if nothing did.
[[nodiscard]] QString failure();
/// To standard error, at once.
void printError(const QString &line);

} // namespace output

} // namespace sealwright
