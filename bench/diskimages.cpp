// Images and archives of the toolchain beside what one core does.

#include "rows.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <zlib.h>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int rounds = 3;
constexpr qsizetype chunkSize = 256 << 10;
constexpr qint64 materialSize = qint64(1) << 30;
/// zip takes two minutes for a whole GiB.
constexpr qint64 archivedSize = qint64(128) << 20;

QString tool(const QString &name)
{
    return QStringLiteral(SEALWRIGHT_TOOLCHAIN "/usr/bin/") + name;
}

/// Bytes that shrink to about a half, as programs do: words in no order.
void writeMaterial(const QString &path, qint64 size)
{
    QRandomGenerator generator(1);
    QByteArray chunk(chunkSize, Qt::Uninitialized);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("the material cannot be written");
    for (qint64 done = 0; done < size; done += chunkSize) {
        for (char &byte : chunk)
            byte = char(generator.bounded(16) * generator.bounded(3));
        file.write(chunk);
    }
}

/// One thread, with the level and the chunks of the real tool.
void packByZlib(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("the material cannot be read");
    std::vector<Bytef> packed(compressBound(chunkSize));
    for (QByteArray chunk = file.read(chunkSize); !chunk.isEmpty(); chunk = file.read(chunkSize)) {
        auto length = uLongf(packed.size());
        compress2(packed.data(), &length, reinterpret_cast<const Bytef *>(chunk.constData()),
                  uLong(chunk.size()), 1);
    }
}

/// The most memory that a program had, in MiB.
double peakOf(const QStringList &command)
{
    constexpr double bytesInMebibyte = 1024 * 1024;
    return double(measuring::peakMemoryOf(command)) / bytesInMebibyte;
}

/// A folder with a file of those bytes, on a disk.
struct Material {
    explicit Material(qint64 size)
    {
        if (!QDir().mkpath(folder))
            qFatal("the material cannot be written");
        writeMaterial(file, size);
    }

    const QTemporaryDir place{u"/var/tmp/sealwright-bench-XXXXXX"_s};
    const QString folder = place.filePath(u"material"_s);
    const QString file = folder + u"/bytes"_s;
};

std::function<void()> runner(const QStringList &command)
{
    return [command] { measuring::runDiscarding(command); };
}

} // namespace

QList<Figure> rows::diskImages()
{
    const Material material(materialSize);
    const QString image = material.place.filePath(u"image.dmg"_s);
    const QStringList create{tool(u"hdiutil"_s), u"create"_s,     image,          u"-ov"_s,
                             u"-quiet"_s,        u"-srcfolder"_s, material.folder};
    const QStringList verify{tool(u"hdiutil"_s), u"verify"_s, u"-quiet"_s, image};
    const double creation = measuring::ratio(rounds, runner(create), [&] { packByZlib(material.file); });
    const double reading =
        measuring::ratio(rounds, runner(verify), runner({u"/usr/bin/7z"_s, u"t"_s, image}));
    return {{u"an image of 1 GiB, over one thread of zlib"_s, creation, 0.65, {}},
            {u"the memory that takes"_s, peakOf(create), 128, u"MiB"_s},
            {u"reading it with all checksums, over 7z t"_s, reading, 1 / 1.5, {}}};
}

QList<Figure> rows::archives()
{
    const Material material(archivedSize);
    const QString archive = material.place.filePath(u"archive.zip"_s);
    const QString other = material.place.filePath(u"other.zip"_s);
    const auto packed = [&archive](const Material &what) {
        return QStringList{tool(u"ditto"_s), u"-c"_s, u"-k"_s, what.folder, archive};
    };
    const QStringList pack = packed(material);
    const double packing = measuring::ratio(rounds, runner(pack), [&] {
        QFile::remove(other);
        measuring::runDiscarding({u"/usr/bin/zip"_s, u"-q"_s, u"-r"_s, u"-6"_s, other, material.folder});
    });
    return {{u"an archive of 128 MiB, over zip -r -6"_s, packing, 0.65, {}},
            {u"the memory that one of 1 GiB takes"_s, peakOf(packed(Material(materialSize))), 128, u"MiB"_s}};
}
