#pragma once

class QLocale;
class QString;

namespace sealwright {

/// The language of the windows. Scripts, logs and reports speak English whatever it is. Main thread.
namespace language {

/// Has the windows speak the first language of the locale that there is, with Qt's own texts; English where
/// there is none. `folder` holds the translations, "sealwright_LANGUAGE.qm".
void use(const QLocale &locale, const QString &folder);

} // namespace language

} // namespace sealwright
