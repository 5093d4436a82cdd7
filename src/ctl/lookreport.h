#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

namespace sealwright {

/// What the client prints of a look for a person to read.
namespace lookreport {

/// The findings, each with its advice, and the code in the order in which it would be signed.
[[nodiscard]] QStringList examinationLines(const QJsonObject &examination);
/// One line an issue: severity, path, architecture, message, separated by tabs.
[[nodiscard]] QStringList issueLines(const QJsonArray &issues);
/// One line a difference: path, what, old, new, separated by tabs.
[[nodiscard]] QStringList differenceLines(const QJsonArray &differences);

} // namespace lookreport

} // namespace sealwright
