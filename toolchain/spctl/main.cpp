#include "spctl/assessment.h"
#include "support/arguments.h"
#include "support/console.h"

#include <QDir>
#include <QFileInfo>

#include <map>

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

constexpr std::string_view usage =
    R"(Usage: spctl --assess [--type execute|exec|open|install] [--context CONTEXT] [--continue] [-v[v]] FILE...
       spctl --help

Says on standard error whether each FILE would be accepted, up to the first that would not be.

  -a, --assess   assess; needed
  -t, --type     the kind of use; execute if it is not given. A package can only be installed (install), and
                 a disk image only be opened (open, with context:primary-signature).
  --context      context:primary-signature: judge what is opened by its own signature
  --continue     go on after one that would not be accepted
  -v, --verbose  also say why
  -h, --help     print this text

An item needs a signature that holds, by a Developer ID certificate whose chain ends in Apple's root or in the authority
of this machine, and a notary's ticket, attached or at the service. Whatever rests on this machine is told as such and
means nothing anywhere else. Exit status: 0 accepted, 1 no such file, 2 what is not built in, 3 rejected, 64 wrong use.
)";

constexpr int rejectedStatus = 3;

int report(const QString &path, const spctl::Assessment &assessment, bool isVerbose)
{
    QString text = path + (assessment.isAccepted ? u": accepted\n"_s : u": rejected\n"_s);
    if (isVerbose)
        text += u"source="_s + assessment.source + u'\n';
    if (isVerbose && !assessment.origin.isEmpty())
        text += u"origin="_s + assessment.origin + u'\n';
    if (isVerbose && !assessment.note.isEmpty())
        text += u"note="_s + assessment.note + u'\n';
    printError(text.toStdString());
    return assessment.isAccepted ? 0 : rejectedStatus;
}

class Assessor {
public:
    Assessor(spctl::Use use, spctl::Context context, bool isVerbose)
        : m_use(use)
        , m_context(context)
        , m_isVerbose(isVerbose)
    {
    }

    [[nodiscard]] int assess(const std::string &operand) const
    {
        const QString path = QDir::cleanPath(QString::fromStdString(operand));
        if (QFileInfo::exists(path))
            return report(path, spctl::assess(path, m_use, m_context), m_isVerbose);
        printError(operand + ": No such file or directory\n");
        return 1;
    }

private:
    spctl::Use m_use;
    spctl::Context m_context;
    bool m_isVerbose;
};

const std::map<std::string, spctl::Use> uses{{"", spctl::Use::execute},
                                             {"execute", spctl::Use::execute},
                                             {"exec", spctl::Use::execute},
                                             {"open", spctl::Use::open},
                                             {"install", spctl::Use::install}};
const std::map<std::string, spctl::Context> contexts{
    {"", spctl::Context::none}, {"context:primary-signature", spctl::Context::primarySignature}};

/// What comes after an item that is not accepted.
enum class After { ends, goesOn };

int assessAll(const Assessor &assessor, const std::vector<std::string> &operands, After after)
{
    int status = 0;
    for (const std::string &operand : operands) {
        status = std::max(status, assessor.assess(operand));
        if (status != 0 && after == After::ends)
            break;
    }
    return status;
}

int run(const ParsedArguments &arguments)
{
    if (!arguments.has("-a") || arguments.operands.empty())
        return refuseArguments("spctl", "only --assess of a file is built in", usage);
    const auto use = uses.find(arguments.value("-t"));
    if (use == uses.end())
        return refuseArguments("spctl", "unrecognized type '" + arguments.value("-t") + "'", usage);
    const auto context = contexts.find(arguments.value("--context"));
    if (context == contexts.end())
        return refuseArguments("spctl", "no context '" + arguments.value("--context") + "' is built in",
                               usage, notBuiltStatus);
    const Assessor assessor(use->second, context->second, arguments.has("-v"));
    return assessAll(assessor, arguments.operands, arguments.has("--continue") ? After::goesOn : After::ends);
}

} // namespace

int main(int argc, char **argv)
{
    const auto arguments = parseArguments(wordsOf(argc, argv),
                                          {{{"-a", "--assess"}},
                                           {{"-t", "--type"}, OptionValue::required},
                                           {{"--context"}, OptionValue::required},
                                           {{"--continue"}},
                                           {{"-v", "--verbose"}, OptionValue::optional},
                                           {{"-h", "--help"}}});
    const bool isUnknown = arguments.error.starts_with("unrecognized");
    if (!arguments.error.empty())
        return refuseArguments("spctl", arguments.error, usage, isUnknown ? notBuiltStatus : usageStatus);
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    return run(arguments);
}
