#include "codesign/identifiers.h"

#include "formats/codesignature/digest.h"

#include <QFile>
#include <QFileInfo>

#include "platform/propertylist/propertylist.h"

using namespace Qt::StringLiterals;
using namespace toolchain::codesignature;

namespace toolchain::codesign {

namespace {

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

bool isVersionPart(QChar character)
{
    return isDigit(character) || character == u'.';
}

QString withoutExtension(const QString &name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    const bool isVersion = dot + 1 < name.size() && isDigit(name[dot + 1]);
    return dot <= 0 || isVersion ? name : name.first(dot);
}

/// "libfrotz7.3.5" becomes "libfrotz7": of the numbers at the end the first one stays.
QString withShortVersion(const QString &name)
{
    if (name.isEmpty() || isVersionPart(name[0]))
        return name;
    qsizetype start = name.size();
    while (start > 0 && isVersionPart(name[start - 1]))
        --start;
    while (start < name.size() && name[start] == u'.')
        ++start;
    qsizetype end = start;
    while (end < name.size() && isDigit(name[end]))
        ++end;
    return end == start ? name : name.first(end);
}

QVariantMap infoFrom(const QByteArray &propertyList)
{
    return platform::propertyListFromData(propertyList).valueOr({}).toMap();
}

QString identifierIn(const QVariantMap &info)
{
    const QString identifier = info.value(u"CFBundleIdentifier"_s).toString();
    return identifier.isEmpty() ? info.value(u"CFBundleName"_s).toString() : identifier;
}

QByteArray sha1OfFile(const QString &path)
{
    constexpr qint64 blockSize = 1 << 18;
    QFile file(path);
    Digest digest(HashType::sha1);
    if (file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        for (QByteArray block = file.read(blockSize); !block.isEmpty(); block = file.read(blockSize))
            digest.add(block);
    }
    return digest.result();
}

/// What tells one build of a file from the next, so that an ad hoc identifier is not met twice.
QByteArray identification(const SignedCode &code)
{
    if (!code.image)
        return sha1OfFile(code.mainFile);
    const MachOSlice &slice = code.image->slices[code.nativeIndex()];
    return slice.uuid.isEmpty() ? digestOf(slice.head, HashType::sha1) : "UUID" + slice.uuid;
}

} // namespace

QString canonicalName(const QString &path)
{
    return withShortVersion(withoutExtension(path.sliced(path.lastIndexOf(u'/') + 1)));
}

QByteArray boundInfoPropertyList(const SignedCode &code, qsizetype slice)
{
    QFile file(code.bundle ? code.bundle->infoPath : code.mainFile);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    if (code.bundle)
        return file.readAll();
    if (!code.image || !code.image->slices[slice].infoPropertyList)
        return {};
    const MachOSlice &part = code.image->slices[slice];
    return bytesAt(file, part.place.offset + part.infoPropertyList->offset, part.infoPropertyList->length);
}

QString identifierFor(const SignedCode &code, const SigningOrder &order)
{
    const QString told = identifierIn(infoFrom(boundInfoPropertyList(code, code.nativeIndex())));
    QString identifier = told.isEmpty() ? canonicalName(code.path) : told;
    if (!identifier.contains(u'.'))
        identifier.prepend(order.prefix);
    if (told.isEmpty() && !identifier.contains(u'.') && order.signer.isAdHoc())
        identifier += u'-' + QString::fromLatin1(identification(code).toHex());
    return identifier;
}

} // namespace toolchain::codesign
