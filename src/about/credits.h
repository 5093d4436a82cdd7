#pragma once

#include "document/controls.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace sealwright {

/// The styled text of the credits at that path, a file or a resource; empty if there is none.
[[nodiscard]] QList<StyledText> readCredits(const QString &path);

/// Reads rich text as far as credits need it: paragraphs, tabs, bold and italic, and every character.
/// Whatever else it holds (fonts, colours, pictures) is left out. Public document: Microsoft, "Rich Text
/// Format (RTF)", version 1.9.1.
[[nodiscard]] QList<StyledText> styledTextFromRtf(const QByteArray &rtf);

} // namespace sealwright
