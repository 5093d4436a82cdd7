#include "formats/digestsignature.h"
#include "formats/identities.h"
#include "formats/statefolder.h"
#include "formats/xar/xarfile.h"
#include "support/arguments.h"
#include "support/console.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

constexpr std::string_view usage = R"(Usage: productsign --sign IDENTITY INPUT OUTPUT
       productsign --help

Writes a signed copy of the installer package INPUT to OUTPUT, in place of what is there. A signature that INPUT
has is replaced.

  --sign IDENTITY   a certificate's name, a part of it, or its SHA-1; it must be in the keychain folder, good
                    for signing packages, and have an RSA key
  -h, --help        print this text

INPUT is a flat package: a sound xar archive with a Distribution or a PackageInfo at its top. The signature is
the one that such an archive has room for: an RSA signature over the checksum of its table of contents, which
holds the checksums of all files, with the certificate in the table. No time stamp and no second signature in
CMS form is made, and nobody but this toolchain trusts the certificates of its keychain folder.
Exit status: 0 done, 1 failed, 64 wrong arguments.
)";

int fail(const QString &message)
{
    printError("productsign: error: " + message.toStdString() + "\n");
    return 1;
}

/// What keeps a file from being signed; empty if nothing does.
QString problemOf(const QString &path, const XarFile &package)
{
    if (!QFileInfo::exists(path))
        return u"The package \"%1\" does not exist."_s.arg(path);
    if (!package.error().isEmpty())
        return u"\"%1\" is no flat package: %2."_s.arg(path, package.error());
    if (!package.isPackage())
        return u"\"%1\" is no package: neither a Distribution nor a PackageInfo is at its top."_s.arg(path);
    const QString damaged = package.damagedFile();
    return damaged.isEmpty() ? QString() : u"\"%1\" is damaged: %2."_s.arg(path, damaged);
}

int signPackage(const QString &wanted, const QString &input, const QString &output)
{
    const IdentityChoice choice = chooseIdentity(keychainFolder(), wanted, IdentityKind::Installer);
    if (!choice.identity)
        return fail(
            u"Could not find appropriate signing identity for \"%1\": %2."_s.arg(wanted, choice.problem));
    const DigestSigner signer(keychainFolder(), choice.identity->sha1);
    if (!signer.hasRsaKey())
        return fail(u"The key of \"%1\" is no RSA key."_s.arg(choice.identity->commonName));
    const XarFile package(input);
    const QString problem = problemOf(input, package);
    if (!problem.isEmpty())
        return fail(problem);
    print("productsign: signing product with identity \"" + choice.identity->commonName.toStdString()
          + "\" from keychain " + keychainFolder().toStdString() + "\n");
    const QString failure = package.writeSigned(signer, output);
    if (!failure.isEmpty())
        return fail(failure);
    print("productsign: Wrote signed product archive to " + output.toStdString() + "\n");
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const auto arguments =
        parseArguments(wordsOf(argc, argv), {{{"--sign"}, OptionValue::Required}, {{"-h", "--help"}}});
    if (!arguments.error.empty())
        return refuseArguments("productsign", arguments.error, usage);
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    if (arguments.value("--sign").empty() || arguments.operands.size() != 2)
        return refuseArguments("productsign", "an identity, an input and an output are needed", usage);
    return signPackage(QString::fromStdString(arguments.value("--sign")),
                       QDir::cleanPath(QString::fromStdString(arguments.operands[0])),
                       QDir::cleanPath(QString::fromStdString(arguments.operands[1])));
}
