#include "formats/identities.h"
#include "formats/statefolder.h"
#include "productsign/signing.h"
#include "productsign/timestamping.h"
#include "support/arguments.h"
#include "support/console.h"

#include <QDir>

#include <openssl/evp.h>

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

constexpr std::string_view usage = R"(Usage: productsign --sign IDENTITY [--timestamp[=URL|none]] INPUT OUTPUT
       productsign --help

Writes a signed copy of the installer package INPUT to OUTPUT, in place of what is there. Signatures and a ticket
that INPUT has are not in the copy.

  --sign IDENTITY        a certificate's name, a part of it, or its SHA-1; it must be in the keychain, good for
                         signing packages, and have an RSA key
  --timestamp[=URL]      get a time stamp from the authority of the notary service's settings, or from URL; this is
                         what happens without the option too
  --timestamp=none       make no time stamp
  -h, --help             print this text

INPUT is a flat package: a sound xar archive with a Distribution or a PackageInfo at its top, whose table of contents
has a checksum of SHA-1, SHA-256 or SHA-512. The copy has the two signatures over that checksum that macOS looks for,
the older one of RSA alone and one in CMS form, each with the whole chain of certificates.
Exit status: 0 done, 1 failed, 2 an option that is not built, 64 wrong arguments.
)";

int fail(const QString &message)
{
    printError("productsign: error: " + message.toStdString() + "\n");
    return 1;
}

void tell(const QString &line)
{
    print("productsign: " + line.toStdString() + "\n");
}

void tellIdentity(const SigningIdentity &identity, const Stamper &stamper)
{
    if (stamper)
        tell(u"using timestamp authority for signature"_s);
    tell(u"signing product with identity \"%1\" from keychain %2"_s.arg(identity.commonName,
                                                                        keychainFolder()));
    for (qsizetype number = 1; number < identity.chain.size(); ++number)
        tell(u"adding certificate \"%1\""_s.arg(
            subjectEntryOf(certificateFrom(identity.chain[number]).get(), NID_commonName)));
}

int signPackage(const QString &wanted, const TimestampChoice &choice, const QString &input,
                const QString &output)
{
    const auto identity = findSigningIdentity(wanted, IdentityKind::installer);
    if (!identity)
        return fail(
            u"Could not find appropriate signing identity for \"%1\": %2."_s.arg(wanted, identity.error()));
    if (EVP_PKEY_get_base_id(identity->key.get()) != EVP_PKEY_RSA)
        return fail(u"The key of \"%1\" is no RSA key."_s.arg(identity->commonName));
    const auto package = xar::Archive::open(input);
    const auto checked = checkPackage(input, package);
    if (!checked)
        return fail(checked.error());
    const auto stamper = stamperFor(choice, package->checksumAlgorithm());
    if (!stamper)
        return fail(stamper.error());
    tellIdentity(*identity, *stamper);
    const auto outcome = writeSignedPackage(*package, *identity, *stamper, output);
    if (!outcome)
        return fail(outcome.error());
    tell(u"Wrote signed product archive to "_s + output);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const auto arguments = parseArguments(
        wordsOf(argc, argv),
        {{{"--sign"}, OptionValue::required}, {{"--timestamp"}, OptionValue::optional}, {{"-h", "--help"}}});
    if (!arguments.error.empty())
        return refuseArguments("productsign", arguments.error, usage, notBuiltStatus);
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    if (arguments.value("--sign").empty() || arguments.operands.size() != 2)
        return refuseArguments("productsign", "an identity, an input and an output are needed", usage);
    const TimestampChoice choice = timestampChoice(QString::fromStdString(arguments.value("--timestamp")));
    return signPackage(QString::fromStdString(arguments.value("--sign")), choice,
                       QDir::cleanPath(QString::fromStdString(arguments.operands[0])),
                       QDir::cleanPath(QString::fromStdString(arguments.operands[1])));
}
