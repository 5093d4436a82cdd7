#include "ui/shown.h"

#include <QCoreApplication>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

QString translated(const QString &text)
{
    return QCoreApplication::translate("Core", text.toUtf8().constData());
}

/// A text of the core in which something is put in.
struct Pattern {
    QString text;
    QRegularExpression form; ///< captures what is put in, in the order of its numbers
};

Pattern patternOf(const QString &text)
{
    QString form = QRegularExpression::escape(text);
    static const QRegularExpression place(uR"re(\\%(\d))re"_s);
    form.replace(place, u"(.*)"_s);
    return {text,
            QRegularExpression(QRegularExpression::anchoredPattern(form),
                               QRegularExpression::DotMatchesEverythingOption)};
}

const QList<Pattern> &patterns()
{
    static const QList<Pattern> all = [] {
        QList<Pattern> found;
        for (const QString &text : coreTexts()) {
            if (text.contains(u"%1"_s))
                found.append(patternOf(text));
        }
        return found;
    }();
    return all;
}

QString filledIn(const QString &pattern, const QStringList &values)
{
    QString text;
    for (qsizetype at = 0; at < pattern.size(); ++at) {
        const bool isPlace =
            pattern.at(at) == u'%' && at + 1 < pattern.size() && pattern.at(at + 1).isDigit();
        const int number = isPlace ? pattern.at(at + 1).digitValue() : 0;
        text += isPlace ? values.value(number) : QString(pattern.at(at));
        at += isPlace ? 1 : 0;
    }
    return text;
}

} // namespace

QString shown(const QString &text)
{
    constexpr qsizetype longest = 4096; // of what is looked up; a tool may say any amount
    if (text.isEmpty() || text.size() > longest || !QCoreApplication::instance())
        return text;
    if (const QString known = translated(text); known != text)
        return known;
    for (const Pattern &pattern : patterns()) {
        const QString target = translated(pattern.text);
        if (target == pattern.text)
            return text; // there is no other language
        if (const auto match = pattern.form.match(text); match.hasMatch())
            return filledIn(target, match.capturedTexts());
    }
    const QStringList paragraphs = text.split(u"\n\n"_s);
    return paragraphs.size() > 1 ? shown(paragraphs).join(u"\n\n"_s) : text;
}

QStringList shown(QStringList texts)
{
    for (QString &text : texts)
        text = shown(text);
    return texts;
}

} // namespace sealwright
