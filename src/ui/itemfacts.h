#pragma once

#include "run/item.h"

#include <QString>

namespace platform {
class FileService;
}

namespace sealwright {

class MainWinController;
struct ItemSurvey;

/// What a person reads of an item below its name.
namespace itemfacts {

/// "Application". Any thread.
[[nodiscard]] QString nameOf(ItemKind kind);

/// "Application · com.example.foo · version 1.2"; empty for a path where nothing lies. Main thread.
[[nodiscard]] QString describe(const platform::FileService &files, const QString &path);
/// "12 MB · x86_64, arm64", of a package "com.example.foo · version 1.2 · 12 MB"; without what the survey
/// does not know.
[[nodiscard]] QString describe(const ItemSurvey &survey);
/// What a submission makes of it by what the document says at this moment: "will be signed by Example Company
/// and uploaded as a zip archive"; "in 7 places" where there are that many. Main thread.
[[nodiscard]] QString intention(MainWinController &document, const QString &path, qsizetype places = 1);

} // namespace itemfacts

} // namespace sealwright
