#include "ctl/output.h"

#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busvalue.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <cerrno>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

QString lastElement(const QDBusObjectPath &path)
{
    return path.path().section(u'/', -1);
}

QStringList lastElements(const QList<QDBusObjectPath> &paths)
{
    QStringList all;
    for (const QDBusObjectPath &path : paths)
        all.append(lastElement(path));
    return all;
}

QString numbers(const platform::QDRect &bounds)
{
    return u"%1 %2 %3 %4"_s.arg(bounds.top).arg(bounds.left).arg(bounds.bottom).arg(bounds.right);
}

int writeError = 0; // of standard output, as errno has it

void write(const QString &text, FILE *stream)
{
    const QByteArray bytes = text.toLocal8Bit();
    const auto size = static_cast<size_t>(bytes.size());
    const bool isWritten =
        std::fwrite(bytes.constData(), 1, size, stream) == size && std::fflush(stream) == 0;
    if (!isWritten && stream == stdout && writeError == 0)
        writeError = errno;
}

/// Without what would end a line or a column.
QString onOneLine(QString text)
{
    for (QChar &letter : text) {
        if (letter.unicode() < u' ')
            letter = u' ';
    }
    return text;
}

} // namespace

namespace output {

QStringList lines(const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<QDBusVariant>())
        return lines(value.value<QDBusVariant>().variant());
    if (value.metaType() == QMetaType::fromType<QDBusObjectPath>())
        return {lastElement(value.value<QDBusObjectPath>())};
    if (value.metaType() == QMetaType::fromType<QDBusArgument>()) {
        const QString signature = value.value<QDBusArgument>().currentSignature();
        if (signature == "ao"_L1)
            return lastElements(qdbus_cast<QList<QDBusObjectPath>>(value));
        if (signature == "(nnnn)"_L1)
            return {numbers(qdbus_cast<platform::QDRect>(value))};
        return {}; // an empty list of anything, which stands for no value
    }
    if (value.metaType() == QMetaType::fromType<QStringList>())
        return value.toStringList();
    return {value.toString()};
}

QStringList filesAsPaths(QStringList lines)
{
    for (QString &line : lines) {
        if (bus::isFileUrl(line))
            line = QUrl(line).toLocalFile();
    }
    return lines;
}

void print(const QStringList &lines)
{
    for (const QString &line : lines)
        write(line + u'\n', stdout);
}

void printText(const QString &text)
{
    write(text.endsWith(u'\n') ? text : text + u'\n', stdout);
}

void printColumns(const QStringList &columns)
{
    QStringList texts;
    for (const QString &column : columns)
        texts.append(onOneLine(column));
    print({texts.join(u'\t')});
}

void printJson(const QJsonValue &value)
{
    const QJsonDocument document =
        value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    write(QString::fromUtf8(document.toJson(QJsonDocument::Indented)), stdout);
}

QString failure()
{
    return writeError == 0 ? QString() : u"cannot write the output: "_s + qt_error_string(writeError);
}

void printError(const QString &line)
{
    write(line + u'\n', stderr);
}

} // namespace output

} // namespace sealwright
