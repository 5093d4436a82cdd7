#include "formats/identities.h"
#include "formats/notarizeditem.h"
#include "formats/resourceseal.h"
#include "formats/signedimage.h"
#include "formats/xar/xarfile.h"
#include "support/arguments.h"
#include "support/console.h"

#include <QDir>
#include <QFileInfo>

#include <set>

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

constexpr std::string_view usage = R"(Usage: spctl --assess [--type execute|exec|open|install] [-v[v]] FILE...
       spctl --help

Says on standard error whether each FILE would be accepted.

  -a, --assess   assess; needed
  -t, --type     the kind of use; execute if it is not given. A package can only be installed (install), and
                 a disk image only be opened (open).
  -v, --verbose  also say why
  -h, --help     print this text

A bundle needs a seal that agrees with its files, a disk image and a package a signature of this toolchain's
codesign or productsign, by a certificate of the kind that is needed and within its dates. And either a stapled
ticket names that seal or signature or this machine's stand-in for the notary service has approved it. Who
issued a certificate is not judged, and the result means nothing outside of this machine. Exit status: 0 accepted, 1 no such file, 3 rejected.
)";

constexpr int rejectedStatus = 3;

struct Assessment {
    QString problem; ///< what speaks against the item; empty if it is accepted
    QString origin;
};

const QString noSignature = u"no usable signature"_s;
const QString brokenSeal = u"a sealed resource is missing or invalid"_s;

Assessment assessBundle(const Bundle &bundle)
{
    if (!QFileInfo::exists(bundle.sealPath()))
        return {noSignature, {}};
    const auto problems = checkSealOf(bundle);
    if (problems.isEmpty())
        return {{}, u"not recorded (this toolchain's seals carry no certificate)"_s};
    const QString place =
        problems.first().path.isEmpty() ? QString() : u" ("_s + problems.first().path + u')';
    return {problems.first().message + place, {}};
}

Assessment assessPackage(const QString &path)
{
    const XarFile package(path);
    const auto signer = readCertificate(package.certificate());
    if (!package.error().isEmpty() || !package.isPackage() || !package.isSigned() || !signer)
        return {noSignature, {}};
    if (!signer->isValidNow || !signer->canSignPackages)
        return {u"not a valid certificate for packages"_s, {}};
    if (!package.signatureFits())
        return {u"invalid signature"_s, {}};
    const QString damaged = package.damagedFile();
    return {damaged.isEmpty() ? QString() : brokenSeal + u" ("_s + damaged + u')', signer->commonName};
}

Assessment assessImage(const QString &path)
{
    const SignedImage image(path);
    const auto signer = readCertificate(image.note().signature.certificate);
    if (!image.error().isEmpty() || !signer)
        return {noSignature, {}};
    if (!signer->isValidNow || !signer->canSignCode)
        return {u"not a valid certificate for code"_s, {}};
    const bool fits = image.note().signature.fits(image.digest(), QCryptographicHash::Sha256);
    return {fits ? QString() : u"invalid signature"_s, signer->commonName};
}

/// Looks at the signature alone.
Assessment assessSignature(const QString &path, const std::string &type)
{
    if (type == "install")
        return XarFile::looksLikeOne(path) ? assessPackage(path) : Assessment{noSignature, {}};
    if (type == "open" && SignedImage::looksLikeOne(path))
        return assessImage(path);
    const auto bundle = readBundle(path);
    return bundle ? assessBundle(*bundle) : Assessment{noSignature, {}};
}

Assessment assess(const QString &path, const std::string &type)
{
    Assessment assessment = assessSignature(path, type);
    if (!assessment.problem.isEmpty())
        return assessment;
    const auto item = openNotarizedItem(path);
    if (!item || !isApproved(*item))
        assessment.problem = u"Unnotarized (local stand-in)"_s;
    return assessment;
}

int report(const QString &path, const Assessment &assessment, bool isVerbose)
{
    const bool isAccepted = assessment.problem.isEmpty();
    QString text = path + (isAccepted ? u": accepted\n"_s : u": rejected\n"_s);
    if (isVerbose)
        text += u"source="_s + (isAccepted ? u"Notarized (local stand-in)"_s : assessment.problem) + u'\n';
    if (isVerbose && isAccepted)
        text += u"origin="_s + assessment.origin + u'\n';
    printError(text.toStdString());
    return isAccepted ? 0 : rejectedStatus;
}

int assessOperand(const std::string &operand, const ParsedArguments &arguments)
{
    const QString path = QDir::cleanPath(QString::fromStdString(operand));
    if (!QFileInfo::exists(path)) {
        printError(operand + ": No such file or directory\n");
        return 1;
    }
    return report(path, assess(path, arguments.value("-t")), arguments.has("-v"));
}

} // namespace

int main(int argc, char **argv)
{
    const auto arguments = parseArguments(wordsOf(argc, argv),
                                          {{{"-a", "--assess"}},
                                           {{"-t", "--type"}, OptionValue::Required},
                                           {{"-v", "--verbose"}, OptionValue::Optional},
                                           {{"-h", "--help"}}});
    if (!arguments.error.empty())
        return refuseArguments("spctl", arguments.error, usage);
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    if (!arguments.has("-a") || arguments.operands.empty())
        return refuseArguments("spctl", "only --assess of a file is built in", usage);
    const std::set<std::string> types{"", "execute", "exec", "open", "install"};
    if (!types.contains(arguments.value("-t")))
        return refuseArguments("spctl", "unrecognized type '" + arguments.value("-t") + "'", usage);
    int status = 0;
    for (const std::string &operand : arguments.operands)
        status = std::max(status, assessOperand(operand, arguments));
    return status;
}
