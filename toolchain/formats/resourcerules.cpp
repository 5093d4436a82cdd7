#include "formats/resourcerules.h"

#include <QList>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

struct Rule {
    QString pattern;
    Coverage coverage = Coverage::Sealed;
    double weight = 1;
    QRegularExpression expression{pattern};
};

const QList<Rule> &rulesOf(SealVersion version)
{
    static const QList<Rule> first{
        {u"^Resources/"_s},
        {u"^Resources/.*\\.lproj/"_s, Coverage::Optional, 1000},
        {u"^Resources/.*\\.lproj/locversion.plist$"_s, Coverage::Omitted, 1100},
        {u"^Resources/Base\\.lproj/"_s, Coverage::Sealed, 1010},
        {u"^version.plist$"_s},
    };
    // The rules that mark folders of nested code are not among them: what lies there is sealed as files.
    static const QList<Rule> second{
        {u".*\\.dSYM($|/)"_s, Coverage::Sealed, 11},
        {u"^(.*/)?\\.DS_Store$"_s, Coverage::Omitted, 2000},
        {u"^.*"_s},
        {u"^Info\\.plist$"_s, Coverage::Omitted, 20},
        {u"^PkgInfo$"_s, Coverage::Omitted, 20},
        {u"^Resources/"_s, Coverage::Sealed, 20},
        {u"^Resources/.*\\.lproj/"_s, Coverage::Optional, 1000},
        {u"^Resources/.*\\.lproj/locversion.plist$"_s, Coverage::Omitted, 1100},
        {u"^Resources/Base\\.lproj/"_s, Coverage::Sealed, 1010},
        {u"^embedded\\.provisionprofile$"_s, Coverage::Sealed, 20},
        {u"^version\\.plist$"_s, Coverage::Sealed, 20},
    };
    return version == SealVersion::First ? first : second;
}

QVariant propertyListForm(const Rule &rule)
{
    if (rule.weight == 1 && rule.coverage == Coverage::Sealed)
        return true;
    QVariantMap form;
    if (rule.weight != 1)
        form.insert(u"weight"_s, rule.weight);
    if (rule.coverage == Coverage::Omitted)
        form.insert(u"omit"_s, true);
    if (rule.coverage == Coverage::Optional)
        form.insert(u"optional"_s, true);
    return form;
}

} // namespace

Coverage coverageOf(const QString &path, SealVersion version)
{
    Coverage coverage = Coverage::Omitted;
    double weight = 0;
    for (const Rule &rule : rulesOf(version)) {
        if (rule.weight > weight && rule.expression.match(path).hasMatch()) {
            coverage = rule.coverage;
            weight = rule.weight;
        }
    }
    return coverage;
}

bool isOutsideOfSeals(const QString &path)
{
    return path.startsWith(u"_CodeSignature/"_s) || path == u"CodeResources"_s
        || path.startsWith(u"_MASReceipt/"_s);
}

QVariantMap resourceRules(SealVersion version)
{
    QVariantMap rules;
    for (const Rule &rule : rulesOf(version))
        rules.insert(rule.pattern, propertyListForm(rule));
    return rules;
}

} // namespace toolchain
