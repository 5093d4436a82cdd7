#include "platform/propertylist/listtext.h"

#include <QRegularExpression>
#include <QStringConverter>

using namespace Qt::StringLiterals;

namespace platform::propertylist {

namespace {

/// An XML declaration, with blanks before it, is over by then.
constexpr qsizetype declarationBytes = 1024;

/// The encoding that an XML declaration in an 8-bit encoding names; null without one.
QByteArray declaredEncoding(const QByteArray &data)
{
    static const QRegularExpression declaration(
        u"\\A\\s*<\\?xml\\s[^>]*?encoding\\s*=\\s*[\"']([A-Za-z0-9._-]+)[\"']"_s);
    const auto match =
        declaration.match(QString::fromLatin1(data.first(qMin(data.size(), declarationBytes))));
    return match.captured(1).toLatin1().toLower();
}

std::optional<QStringConverter::Encoding> encodingOf(const QByteArray &data)
{
    if (const auto detected = QStringConverter::encodingForData(data, u'<'))
        return detected;
    const QByteArray name = declaredEncoding(data);
    // A declaration that could be read byte by byte is not in UTF-16, whatever it says of itself.
    if (name.isEmpty() || name == "us-ascii" || name.startsWith("utf-16") || name.startsWith("utf-32"))
        return QStringConverter::Utf8;
    return QStringConverter::encodingForName(name);
}

} // namespace

Result<QString> decodeListText(const QByteArray &data)
{
    const auto encoding = encodingOf(data);
    if (!encoding) {
        const QString name = QString::fromLatin1(declaredEncoding(data));
        return Error{u"The encoding '%1' of the property list is not known"_s.arg(name)};
    }
    // Stateless: a character cut off at the end is wrong, for no more is to come.
    QStringDecoder decoder(*encoding,
                           QStringConverter::Flag::ConvertInvalidToNull | QStringConverter::Flag::Stateless);
    QString text = decoder.decode(data);
    if (decoder.hasError() && !text.contains(QChar::Null)) {
        text.chop(1); // Qt marks one that is cut off by U+FFFD, whatever the flags
        text += QChar::Null;
    }
    return text;
}

QString placeInText(QStringView text, qsizetype offset)
{
    qsizetype line = 1;
    qsizetype lineStart = 0;
    for (qsizetype i = 0; i < offset; ++i) {
        const bool isFirstOfPair = text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
        if (text[i] == u'\n' || (text[i] == u'\r' && !isFirstOfPair)) {
            ++line;
            lineStart = i + 1;
        }
    }
    return u"Line %1, column %2: "_s.arg(line).arg(offset - lineStart + 1);
}

QString undecodedBytes(QStringView text)
{
    const qsizetype offset = text.indexOf(QChar::Null);
    return offset < 0 ? QString() : placeInText(text, offset) + u"the bytes here are no text"_s;
}

} // namespace platform::propertylist
