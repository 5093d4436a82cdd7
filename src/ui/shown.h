#pragma once

#include <QString>
#include <QStringList>

namespace sealwright {

/// A text of the core in the language of the windows. The core speaks English, as scripts and logs read it;
/// what it hands to a window passes through here. A text that is not known, such as a tool's own, stays as it
/// is. Main thread.
[[nodiscard]] QString shown(const QString &text);
[[nodiscard]] QStringList shown(QStringList texts);

/// The texts of the core that windows show, in English; %1 and so on stand for what is put in.
[[nodiscard]] const QStringList &coreTexts();

} // namespace sealwright
