// Signatures of code beside the digests that they are made of, and the start of a program.

#include "rows.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace {

constexpr double mebibyte = 1024 * 1024;
constexpr qint64 gibibyte = 1024LL * 1024 * 1024;

void put(QByteArray &bytes, std::initializer_list<quint32> numbers)
{
    for (const quint32 number : numbers) {
        const quint32 ordered = qToLittleEndian(number);
        bytes.append(reinterpret_cast<const char *>(&ordered), sizeof ordered);
    }
}

void putSegment(QByteArray &bytes, const QByteArray &name, quint32 offset, quint32 length)
{
    put(bytes, {0x19, 72});
    bytes += name.leftJustified(16, '\0');
    put(bytes, {offset, 0, length, 0, offset, 0, length, 0, 7, 5, 0, 0});
}

/// An executable for x86_64 of a length, which repeats itself.
void makeExecutable(const QString &path, quint32 length)
{
    QByteArray commands;
    putSegment(commands, "__TEXT", 0, length);
    putSegment(commands, "__LINKEDIT", length, 16);
    put(commands, {0x32, 24, 1, 0xb0000, 0xc0300, 0});
    QByteArray head;
    put(head, {0xfeedfacf, 0x01000007, 3, 2, 3, quint32(commands.size()), 0, 0});
    head += commands;
    head.append(0x1000 - head.size(), '\0');
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(head) != head.size())
        qFatal("%s cannot be written", qPrintable(path));
    const QByteArray block = QByteArray("0123456789abcde\n").repeated(256);
    for (qint64 at = 0x1000; at < length; at += block.size())
        file.write(block);
    file.write(QByteArray(16, 'L'));
}

QString tool(const QString &name)
{
    return QStringLiteral(TOOLCHAIN_ROOT) + u"/usr/bin/"_s + name;
}

/// Half of what is measured is the keychain's; each benchmark has one of its own.
void makeIdentity(const QTemporaryDir &place)
{
    qputenv("SEALWRIGHT_TOOLCHAIN_STATE", place.filePath(u"state"_s).toLocal8Bit());
    measuring::runDiscarding(
        {tool(u"sealwright-keychain"_s), u"make-identity"_s, u"--name"_s, u"Bench (B3NCH00000)"_s});
}

QStringList signing(const QString &identity, const QString &path)
{
    return {tool(u"codesign"_s), u"-f"_s, u"-s"_s, identity, u"--digest-algorithm=sha1,sha256"_s, path};
}

} // namespace

QList<Figure> rows::signingOfALargeFile()
{
    const QTemporaryDir place;
    makeIdentity(place);
    const QString file = place.filePath(u"large"_s);
    makeExecutable(file, quint32(gibibyte));
    const double ratio = measuring::ratio(
        3, [&] { measuring::runDiscarding(signing(u"Bench"_s, file)); },
        [&] {
            measuring::runDiscarding({u"/usr/bin/sha1sum"_s, file});
            measuring::runDiscarding({u"/usr/bin/sha256sum"_s, file});
        });
    const double peak = double(measuring::peakMemoryOf(signing(u"Bench"_s, file))) / mebibyte;
    return {{u"signing 1 GiB with both digests, over sha1sum and sha256sum"_s, ratio, 0.7, {}},
            {u"peak memory of signing 1 GiB"_s, peak, 64, u"MiB"_s}};
}

QList<Figure> rows::signingOfManyItems()
{
    constexpr int items = 1000;
    constexpr quint32 itemLength = 0x8000;
    const QTemporaryDir place;
    makeIdentity(place);
    for (int index = 0; index < items; ++index)
        makeExecutable(place.filePath(QString::number(index)), itemLength);
    const double ratio = measuring::ratio(
        1,
        [&] {
            for (int index = 0; index < items; ++index)
                measuring::runDiscarding(signing(u"Bench"_s, place.filePath(QString::number(index))));
        },
        [] {
            for (int index = 0; index < items; ++index)
                measuring::runDiscarding({tool(u"codesign"_s), u"--help"_s});
        });
    return {{u"1,000 signings of small items, over 1,000 starts of the same program"_s, ratio, 1.3, {}}};
}
