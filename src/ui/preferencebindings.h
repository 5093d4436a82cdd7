#pragma once

#include <QString>

class QCheckBox;
class QDoubleSpinBox;
class QLineEdit;
class QSpinBox;

namespace platform {
class Preferences;
}

namespace sealwright {

/// Ties a widget to a preference, so that both show the same at all times, whoever changes it. A value that
/// the widget cannot show is left as it is until a person sets another. Main thread.
namespace bindings {

void bind(QCheckBox &box, platform::Preferences &preferences, const QString &key);
/// What is typed counts when the edit has ended.
void bind(QSpinBox &box, platform::Preferences &preferences, const QString &key);
void bind(QDoubleSpinBox &box, platform::Preferences &preferences, const QString &key);
/// The same; an empty text removes the key.
void bind(QLineEdit &edit, platform::Preferences &preferences, const QString &key);

} // namespace bindings

} // namespace sealwright
