#include "ui/itemsurvey.h"

#include "platform/bundle.h"
#include "platform/fileservice.h"
#include "run/item.h"
#include "signing/machonumbers.h"
#include "signing/scandecisions.h"

#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

using namespace macho;

constexpr int mostEntries = 500'000;
constexpr qsizetype headerRead = 4096; // bytes, more than any count of architectures takes

QString nameOf(quint32 cpu, quint32 subtype)
{
    switch (cpu) {
    case cpuX86_64:
        return u"x86_64"_s;
    case cpuArm64:
        return (subtype & subtypeMask) == subtypeArm64e ? u"arm64e"_s : u"arm64"_s;
    case cpuArm64_32:
        return u"arm64_32"_s;
    case cpuI386:
        return u"i386"_s;
    default:
        return {};
    }
}

QStringList universalArchitectures(QByteArrayView bytes)
{
    QStringList names;
    const quint32 count = qFromBigEndian<quint32>(bytes.data() + 4);
    for (quint32 i = 0; count <= mostArchitectures && i < count; ++i) {
        const qsizetype entry = universalHeader + i * universalEntry;
        if (entry + universalEntry > bytes.size())
            break;
        names.append(nameOf(qFromBigEndian<quint32>(bytes.data() + entry),
                            qFromBigEndian<quint32>(bytes.data() + entry + 4)));
    }
    names.removeAll(QString());
    return names;
}

QByteArray beginningOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(headerRead) : QByteArray();
}

/// Counts what a run would sign on its own.
class Places : public ScanWatcher {
public:
    bool isCode(const QString &file) override { return !architecturesIn(beginningOf(file)).isEmpty(); }
    void signable(const QString &item) override { m_signable.append(item); }
    void mainExecutable(const QString &file) override { m_mainExecutables.insert(file); }
    void passedOver(const QString &, PassedOver) override { }

    qsizetype count() const { return signingOrder(m_signable, m_mainExecutables).size(); }

private:
    OrderedPathSet m_signable;
    QSet<QString> m_mainExecutables;
};

/// Less than nothing if there are too many files.
qint64 bytesOf(const QString &path)
{
    if (!QFileInfo(path).isDir())
        return QFileInfo(path).size();
    qint64 bytes = 0;
    int entries = 0;
    QDirIterator walk(path, QDir::Files | QDir::Hidden | QDir::System | QDir::NoSymLinks,
                      QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        walk.next();
        if (++entries > mostEntries)
            return -1;
        bytes += walk.fileInfo().size();
    }
    return bytes;
}

QString mainExecutable(const platform::FileService &files, const QString &path)
{
    const QString name = platform::informationText(files, path, u"CFBundleExecutable"_s);
    return name.isEmpty() ? QString() : path + u"/Contents/MacOS/"_s + name;
}

} // namespace

QStringList architecturesIn(QByteArrayView bytes)
{
    if (bytes.size() < universalHeader + 4)
        return {};
    if (qFromBigEndian<quint32>(bytes.data()) == universal)
        return universalArchitectures(bytes);
    const quint32 magic = qFromLittleEndian<quint32>(bytes.data());
    if (magic != thin64 && magic != thin32)
        return {};
    const QString name =
        nameOf(qFromLittleEndian<quint32>(bytes.data() + 4), qFromLittleEndian<quint32>(bytes.data() + 8));
    return name.isEmpty() ? QStringList() : QStringList{name};
}

ItemSurvey surveyOf(const platform::FileService &files, const QString &path)
{
    ItemSurvey survey;
    const qint64 bytes = bytesOf(path);
    if (bytes < 0)
        return survey;
    survey.bytes = bytes;
    if (!Item(path).isBundle())
        return survey;
    survey.architectures = architecturesIn(beginningOf(mainExecutable(files, path)));
    Places places;
    const QStringList nothingSkipped;
    ScanDecisions(files, nothingSkipped, places).parseDirectory(path);
    survey.places = qMax<qsizetype>(1, places.count());
    return survey;
}

ItemSurvey surveyIn(const QJsonObject &examination)
{
    ItemSurvey survey;
    survey.bytes = examination.value("size"_L1).toInteger();
    const QJsonObject product = examination.value("product"_L1).toObject();
    survey.identifier = product.value("identifier"_L1).toString();
    survey.version = product.value("version"_L1).toString();
    survey.volume = product.value("volume"_L1).toString();
    if (!Item(examination.value("item"_L1).toString()).isBundle())
        return survey;
    for (const auto &value : examination.value("code"_L1).toArray()) {
        const QJsonObject code = value.toObject();
        survey.places += code.value("order"_L1).isDouble() ? 1 : 0;
        if (code.value("path"_L1).toString() == "."_L1)
            survey.architectures = code.value("architectures"_L1).toVariant().toStringList();
    }
    survey.places = qMax<qsizetype>(1, survey.places);
    return survey;
}

} // namespace sealwright
