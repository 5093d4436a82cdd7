#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

namespace sealwright {

/// What is found, in the forms that build servers read.
namespace lookforms {

/// The results of JUnit: a failed test for each error, a passed one for each warning, and one that has passed
/// where nothing is found at all. The form is that of https://github.com/testmoapp/junitxml.
[[nodiscard]] QString junitOfExamination(const QJsonObject &examination);
[[nodiscard]] QString junitOfIssues(const QString &document, const QJsonArray &issues);

/// SARIF 2.1.0 of OASIS, the "Static Analysis Results Interchange Format".
[[nodiscard]] QString sarifOfExamination(const QJsonObject &examination);
[[nodiscard]] QString sarifOfIssues(const QJsonArray &issues);

} // namespace lookforms

} // namespace sealwright
