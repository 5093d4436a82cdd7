#pragma once

#include "measuring.h"

#include <QList>

/// What is measured, one function for each subject. Each makes its own material in a temporary folder.
namespace rows {

[[nodiscard]] QList<Figure> oneToolRun();
[[nodiscard]] QList<Figure> muchToolOutput();
[[nodiscard]] QList<Figure> bundleWalk();
[[nodiscard]] QList<Figure> examination();
[[nodiscard]] QList<Figure> workingCopy();
[[nodiscard]] QList<Figure> windowLog();
[[nodiscard]] QList<Figure> submissionOfManyItems();
[[nodiscard]] QList<Figure> waitingDocuments();
[[nodiscard]] QList<Figure> manyDocuments();
[[nodiscard]] QList<Figure> scriptedSubmissions();
[[nodiscard]] QList<Figure> diskImages();
[[nodiscard]] QList<Figure> archives();
[[nodiscard]] QList<Figure> bundleSeal();
[[nodiscard]] QList<Figure> packageSigning();
[[nodiscard]] QList<Figure> signingOfALargeFile();
[[nodiscard]] QList<Figure> signingOfManyItems();
[[nodiscard]] QList<Figure> notarization();

} // namespace rows
