#pragma once

#include <QString>

namespace sealwright {

/// A text as a button or a tab shows it letter for letter, without a letter that leads to it by the keyboard.
[[nodiscard]] inline QString withoutMnemonic(QString text)
{
    return text.replace(u'&', QStringLiteral("&&"));
}

} // namespace sealwright
