#include "formats/notarystate.h"
#include "formats/resourceseal.h"
#include "formats/statefolder.h"
#include "formats/ticket.h"
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
  -t, --type     the kind of use; execute if it is not given. A package (install) and a disk image (open)
                 are always rejected, as no signature in them can be read here.
  -v, --verbose  also say why
  -h, --help     print this text

A bundle is accepted if its seal agrees with its files, and either its stapled ticket names that seal or
this machine's stand-in for the notary service has approved it. No certificate is judged, and the result
means nothing outside of this machine. Exit status: 0 accepted, 1 no such file, 3 rejected.
)";

constexpr int rejectedStatus = 3;

struct Assessment {
    bool isAccepted = false;
    QString source;
};

bool isApproved(const Bundle &bundle)
{
    const QByteArray digest = sealDigest(bundle);
    const auto ticket = readTicket(bundle.ticketPath());
    return (ticket && ticket->sealDigest == digest) || NotaryState(notaryFolder()).approvalOf(digest);
}

Assessment assess(const QString &path, const std::string &type)
{
    const auto bundle = type == "install" ? std::nullopt : readBundle(path);
    if (!bundle || !QFileInfo::exists(bundle->sealPath()))
        return {false, u"no usable signature"_s};
    const auto problems = checkSealOf(*bundle);
    if (!problems.isEmpty()) {
        const QString place =
            problems.first().path.isEmpty() ? QString() : u" ("_s + problems.first().path + u')';
        return {false, problems.first().message + place};
    }
    if (!isApproved(*bundle))
        return {false, u"Unnotarized (local stand-in)"_s};
    return {true, u"Notarized (local stand-in)"_s};
}

int report(const QString &path, const Assessment &assessment, bool isVerbose)
{
    QString text = path + (assessment.isAccepted ? u": accepted\n"_s : u": rejected\n"_s);
    if (isVerbose)
        text += u"source="_s + assessment.source + u'\n';
    if (isVerbose && assessment.isAccepted)
        text += u"origin=not recorded (this toolchain's seals carry no certificate)\n"_s;
    printError(text.toStdString());
    return assessment.isAccepted ? 0 : rejectedStatus;
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
