#include "platform/propertylist/propertylist.h"

#include "platform/propertylist/limits.h"
#include "platform/propertylist/listtext.h"
#include "platform/propertylist/readers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

bool isHexadecimalOrBlank(QChar character)
{
    const char16_t code = character.unicode();
    return character.isSpace() || (code >= u'0' && code <= u'9') || (code >= u'a' && code <= u'f')
        || (code >= u'A' && code <= u'F');
}

/// Both XML and old-style data ("<0fbd77>") begin with '<', but no element of a list has a name of only
/// hexadecimal digits.
bool looksLikeXml(QStringView text)
{
    if (!text.startsWith(u'<'))
        return false;
    const auto name = text.sliced(1);
    const auto other =
        std::find_if_not(name.begin(), name.end(), [](QChar c) { return isHexadecimalOrBlank(c); });
    return other != name.end() && *other != u'>';
}

} // namespace

Result<QVariant> propertyListFromData(const QByteArray &data)
{
    using namespace propertylist;

    if (data.size() > maximumInputBytes)
        return Error{u"The property list is larger than %1 MiB"_s.arg(maximumInputBytes / mebibyte)};
    if (data.startsWith("bplist0"))
        return readBinaryList(data);

    const Result<QString> text = decodeListText(data);
    if (!text)
        return text.failure();
    if (QStringView(*text).trimmed().isEmpty())
        return Error{u"The property list is empty"_s};
    if (const QString error = undecodedBytes(*text); !error.isNull())
        return Error{error};
    return looksLikeXml(QStringView(*text).trimmed()) ? readXmlList(*text) : readTextList(*text);
}

} // namespace platform
