// Each item of the corpus gets the findings that it must have, and no others.

#include "examine/corpus.h"
#include "examine/examiner.h"
#include "examine/signingplace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using testing::Ge;

namespace {

QStringList found(const examine::Examination &examination, examine::Severity severity)
{
    QStringList lines;
    for (const examine::Finding &finding : examination.findings) {
        const QString line = finding.rule + u' ' + finding.path;
        if (finding.severity == severity && !lines.contains(line))
            lines.append(line);
    }
    lines.sort();
    return lines;
}

} // namespace

namespace {

void checkTexts(const examine::Examination &examination)
{
    for (const examine::Finding &finding : examination.findings) {
        EXPECT_FALSE(finding.message.isEmpty()) << finding.rule.toStdString();
        EXPECT_FALSE(finding.advice.isEmpty()) << finding.rule.toStdString();
    }
}

void check(const CorpusItem &known)
{
    SCOPED_TRACE(known.name);
    ItemMaker item(known.architecture);
    known.make(item);
    const auto examination = examine::examineItem(item.item(), item.choices);
    ASSERT_TRUE(examination) << examination.error().toStdString();
    EXPECT_EQ(found(*examination, examine::Severity::error).join(u'\n').toStdString(),
              known.errors.join(u'\n').toStdString());
    EXPECT_EQ(found(*examination, examine::Severity::warning).join(u'\n').toStdString(),
              known.warnings.join(u'\n').toStdString());
    EXPECT_EQ(examination->isRefused(), !known.errors.isEmpty());
    checkTexts(*examination);
}

} // namespace

class TheCorpus : public SigningPlace { };

TEST_F(TheCorpus, getsTheFindingsThatItMustHaveAndNoOthers)
{
    for (const CorpusItem &known : corpus())
        check(known);
}

TEST_F(TheCorpus, holdsAtLeast120Items)
{
    EXPECT_THAT(corpus().size(), Ge(120));
}
