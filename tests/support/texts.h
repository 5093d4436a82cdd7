#pragma once

#include <QByteArray>
#include <QDebug>
#include <QString>
#include <QUrl>

#include <ostream>

// A comparison that fails shows texts as texts, and not as lists of their characters' codes.

inline void PrintTo(const QString &text, std::ostream *stream)
{
    *stream << (text.isNull() ? "no text" : '"' + text.toStdString() + '"');
}

inline void PrintTo(const QByteArray &bytes, std::ostream *stream)
{
    *stream << QDebug::toString(bytes).toStdString();
}

inline void PrintTo(const QUrl &url, std::ostream *stream)
{
    *stream << '<' << url.toEncoded().toStdString() << '>';
}
