#include "ctl/output.h"

#include "scripting/dbus/busbounds.h"
#include "scripting/dbus/busnames.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QUrl>

#include <cstdio>

using namespace Qt::StringLiterals;

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

void write(const QString &text, FILE *stream)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stream);
    std::fflush(stream);
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

void printError(const QString &line)
{
    write(line + u'\n', stderr);
}

} // namespace output
