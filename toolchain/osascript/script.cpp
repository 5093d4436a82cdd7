#include "osascript/script.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

const QString application = u"application id \"com\\.c-command\\.DropDMG\""_s;
const QString quotedText = u"\"((?:[^\"\\\\]|\\\\.)*)\""_s; // quotes inside are escaped

QRegularExpression pattern(const QString &lines)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(lines));
}

QString unescaped(const QString &text)
{
    QString result;
    for (qsizetype place = 0; place < text.size(); ++place) {
        if (text[place] == u'\\')
            ++place; // the pattern lets no text end in one
        result += text[place];
    }
    return result;
}

} // namespace

std::optional<Script> readScript(const QString &source)
{
    static const QRegularExpression listing = pattern(u"with timeout of \\d+ seconds\ntell "_s + application
                                                      + u" to name of every configuration\nend timeout"_s);
    static const QRegularExpression creation = pattern(
        u"set theFile to "_s + quotedText + u" as POSIX file\ntell "_s + application
        + u"\nwith timeout of \\d+ seconds\nset theResult to create from theFile configuration name "_s
        + quotedText + u"\nend timeout\nend tell\nreturn theResult"_s);
    if (listing.match(source).hasMatch())
        return Script{};
    const auto match = creation.match(source);
    if (!match.hasMatch())
        return std::nullopt;
    return Script{Script::Wish::createImage, unescaped(match.captured(1)), unescaped(match.captured(2))};
}

QString quoted(const QString &text)
{
    QString escaped = text;
    escaped.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s);
    return u'"' + escaped + u'"';
}

} // namespace toolchain
