#pragma once

#include <QString>

namespace platform {
class FileService;
}

namespace sealwright {

class MainWinController;

/// What a person reads of an item below its name.
namespace itemfacts {

/// "Application · com.example.foo · version 1.2"; empty for a path where nothing lies. Main thread.
[[nodiscard]] QString describe(const platform::FileService &files, const QString &path);
/// What a submission makes of it by what the document says at this moment: "will be signed by Example Company
/// and uploaded as a zip archive". Main thread.
[[nodiscard]] QString intention(MainWinController &document, const QString &path);

} // namespace itemfacts

} // namespace sealwright
