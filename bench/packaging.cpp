// The toolchain's seal of a bundle and its signing of packages.

#include "rows.h"

#include "formats/resourceseal/bundleseal.h"

#include "support/items.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

constexpr int folders = 1000;
constexpr int filesInFolder = 100;
constexpr qint64 packageSize = qint64(2) << 30; // bytes

platform::Result<toolchain::seal::NestedCode> noNestedCode(const QString &path)
{
    qFatal("nested code was found: %s", qPrintable(path));
}

void digestAll(const QString &program, const QString &folder)
{
    measuring::runDiscarding(
        {u"/bin/sh"_s, u"-c"_s, u"find \"$1\" -type f -print0 | xargs -0 "_s + program, u"sh"_s, folder});
}

/// A package whose payload is as long as that, and means nothing.
void makePackage(const QTemporaryDir &place)
{
    const QString script = uR"(
import hashlib, struct, sys, zlib
size = int(sys.argv[2])
block = bytes(range(256)) * 4096
digest = hashlib.sha1()
for _ in range(size // len(block)):
    digest.update(block)
file = lambda n, o, l, d: f'<file id="{n}"><data><length>{l}</length><offset>{o}</offset><size>{l}</size>' \
    f'<encoding style="application/octet-stream"/><archived-checksum style="sha1">{d}</archived-checksum></data>' \
    f'<type>file</type><name>{"PackageInfo" if n == 1 else "Payload"}</name></file>'
toc = ('<xar><toc><checksum style="sha1"><offset>0</offset><size>20</size></checksum>'
       + file(1, 20, 11, hashlib.sha1(b'<pkg-info/>').hexdigest()) + file(2, 31, size, digest.hexdigest())
       + '</toc></xar>').encode()
packed = zlib.compress(toc)
with open(sys.argv[1], 'wb') as out:
    out.write(struct.pack('>4sHHQQI', b'xar!', 28, 1, len(packed), len(toc), 1) + packed)
    out.write(hashlib.sha1(packed).digest() + b'<pkg-info/>')
    for _ in range(size // len(block)):
        out.write(block)
)"_s;
    measuring::runDiscarding(
        {u"/usr/bin/python3"_s, u"-c"_s, script, place.filePath(u"big.pkg"_s), QString::number(packageSize)});
}

} // namespace

QList<Figure> rows::bundleSeal()
{
    const QTemporaryDir place;
    for (int folder = 0; folder < folders; ++folder) {
        const QString path = place.filePath(u"Resources/folder %1"_s.arg(folder));
        items::makeFolder(path);
        for (int file = 0; file < filesInFolder; ++file)
            items::makeFile(path + u"/file %1.png"_s.arg(file), QByteArray(4'000, char('a' + file % 26)));
    }
    const toolchain::seal::SealedFolder folder{place.path(), toolchain::seal::Layout::withResources, {}};
    const double ratio = measuring::ratio(
        3,
        [&folder] {
            if (!toolchain::seal::makeSeal(folder, toolchain::seal::Digests::sha1AndSha256, noNestedCode))
                qFatal("the bundle cannot be sealed");
        },
        [&place] {
            digestAll(u"sha1sum"_s, place.path());
            digestAll(u"sha256sum"_s, place.path());
        });
    return {{u"sealing 100,000 files, over sha1sum and sha256sum"_s, ratio, 1.2, {}}};
}

QList<Figure> rows::packageSigning()
{
    const QTemporaryDir place;
    qputenv("SEALWRIGHT_TOOLCHAIN_STATE", QFile::encodeName(place.filePath(u"state"_s)));
    const QString tools = QStringLiteral(TOOLCHAIN_ROOT);
    measuring::runDiscarding({tools + u"/usr/bin/sealwright-keychain"_s, u"make-identity"_s, u"--kind"_s,
                              u"installer"_s, u"--name"_s, u"Example Corp (A1B2C3D4E5)"_s});
    makePackage(place);
    const QString package = place.filePath(u"big.pkg"_s);
    const QString copy = place.filePath(u"copy.pkg"_s);
    const double ratio = measuring::ratio(
        3,
        [&] {
            measuring::runDiscarding({tools + u"/usr/bin/productsign"_s, u"--sign"_s,
                                      u"Developer ID Installer"_s, u"--timestamp=none"_s, package, copy});
        },
        [&] {
            measuring::runDiscarding({u"/bin/cp"_s, package, copy});
            measuring::runDiscarding({u"/usr/bin/sha1sum"_s, package});
            measuring::runDiscarding({u"/usr/bin/sha1sum"_s, copy});
        });
    return {{u"productsign of 2 GiB, over cp and two digests"_s, ratio, 1.3, {}}};
}
