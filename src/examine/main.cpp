#include "examine/comparison.h"
#include "examine/examiner.h"
#include "support/confinement.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <clocale>
#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace sealwright;

using platform::Error;
using platform::Result;

namespace {

constexpr int nothingRefused = 0;
constexpr int refused = 1;
constexpr int wrongUse = 2;
constexpr int notExamined = 4;

int fail(int status, const QString &text)
{
    fprintf(stderr, "sealwright-examine: %s\n", qUtf8Printable(text));
    return status;
}

/// The JSON itself, or a file's name; "-" is standard input. Nothing gives the choices that leave everything
/// at its default.
Result<examine::Choices> readChoices(const QString &file)
{
    if (file.isEmpty())
        return examine::Choices();
    if (file.startsWith(u'{'))
        return examine::choicesFromJson(file.toUtf8());
    QFile input(file);
    const bool isOpen =
        file == "-"_L1 ? input.open(stdin, QIODevice::ReadOnly) : input.open(QIODevice::ReadOnly);
    if (!isOpen)
        return Error{u"\"%1\": %2"_s.arg(file, input.errorString())};
    return examine::choicesFromJson(input.readAll());
}

int print(const QByteArray &json, int status)
{
    const bool isWritten =
        fwrite(json.constData(), 1, std::size_t(json.size()), stdout) == std::size_t(json.size())
        && fflush(stdout) == 0;
    return isWritten ? status : fail(notExamined, u"standard output cannot be written to."_s);
}

int examineOne(const QString &item, const examine::Choices &choices)
{
    const auto examination = examine::examineItem(item, choices);
    if (!examination)
        return fail(notExamined, examination.error());
    return print(toJson(*examination), examination->isRefused() ? refused : nothingRefused);
}

int compareTwo(const QString &old, const QString &recent)
{
    const auto differences = examine::compareItems(old, recent);
    if (!differences)
        return fail(notExamined, differences.error());
    return print(toJson(*differences), differences->isEmpty() ? nothingRefused : refused);
}

} // namespace

int main(int argc, char **argv)
{
    if (setlocale(LC_ALL, "C.UTF-8"))
        setenv("LC_ALL", "C.UTF-8", 1);
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(u"sealwright-examine"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(SEALWRIGHT_VERSION));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Looks at an item and prints, as JSON, what a run would do with it and what would be refused.\n"
        "Exit status: 0 nothing refused, 1 refused, 2 wrong use, 4 it could not be looked at."_s);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(u"PATH"_s, u"the item"_s);
    parser.addOption({u"choices"_s,
                      u"What the run would be made with, as JSON, or a file with it; - is standard input."_s,
                      u"CHOICES"_s});
    parser.addOption({u"compare"_s, u"Tells what differs between two items: 0 nothing, 1 something."_s});
    if (!parser.parse(QCoreApplication::arguments()))
        return fail(wrongUse, parser.errorText());
    if (parser.isSet(u"help"_s))
        return print(parser.helpText().toUtf8(), nothingRefused);
    if (parser.isSet(u"version"_s))
        return print("sealwright-examine " SEALWRIGHT_VERSION "\n", nothingRefused);
    const QStringList operands = parser.positionalArguments();
    const toolchain::ReaderConfinement confinement;
    confinement.tellComplaint("sealwright-examine");
    if (parser.isSet(u"compare"_s))
        return operands.size() == 2 ? compareTwo(operands[0], operands[1])
                                    : fail(wrongUse, u"two PATHs are needed."_s);
    if (operands.size() != 1)
        return fail(wrongUse, u"one PATH is needed."_s);
    const auto choices = readChoices(parser.value(u"choices"_s));
    if (!choices)
        return fail(wrongUse, choices.error());
    return examineOne(operands.first(), *choices);
}
