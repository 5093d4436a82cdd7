#include "formats/resourceseal/sealformat.h"

#include <QXmlStreamReader>

#include "platform/propertylist/propertylist.h"

#include <functional>

using namespace Qt::StringLiterals;

namespace toolchain::seal {

namespace {

constexpr qsizetype largestSeal = 256 << 20; // bytes; some 700,000 files
constexpr qsizetype mostRules = 20'000;

/// Reads the XML form element by element: the general reader would keep a value and a key for each of ten
/// elements a file.
class SealReader {
public:
    explicit SealReader(const QByteArray &bytes)
        : m_xml(withCarriageReturns(bytes))
    {
    }

    platform::Result<CodeSeal> read()
    {
        bool hasSecond = false;
        m_xml.readNextStartElement();
        if (m_xml.name() != u"plist" || !m_xml.readNextStartElement() || m_xml.name() != u"dict")
            return wrong(u"no dictionary"_s);
        forEachKey([&](const QString &key) {
            hasSecond = hasSecond || key == u"files2";
            readPart(key);
        });
        if (m_xml.hasError())
            return wrong(m_xml.errorString());
        m_seal.version = hasSecond ? 2 : 1;
        return std::move(m_seal);
    }

private:
    /// "Icon\r" is a name of the Finder's; Apple's writer leaves the character as it is, and a reader by the
    /// rules of XML would make a line end of it.
    static QByteArray withCarriageReturns(QByteArray bytes)
    {
        return bytes.contains('\r') ? bytes.replace("\r", "&#13;") : bytes;
    }

    platform::Error wrong(const QString &reason) const
    {
        return {u"line %1: %2"_s.arg(m_xml.lineNumber()).arg(reason)};
    }

    /// Calls back for each key with the reader at its value's first element, which must be consumed.
    void forEachKey(const std::function<void(const QString &)> &take)
    {
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() != u"key")
                return m_xml.raiseError(u"a value without a key"_s);
            const QString key = m_xml.readElementText();
            if (!m_xml.readNextStartElement())
                return m_xml.raiseError(u"the key \"%1\" has no value"_s.arg(key.left(80)));
            take(key);
        }
    }

    void readPart(const QString &key)
    {
        const bool isDictionary = m_xml.name() == u"dict";
        if (!isDictionary || (!key.startsWith(u"files") && !key.startsWith(u"rules")))
            return m_xml.skipCurrentElement();
        if (key == u"files")
            readEntries(m_seal.files);
        else if (key == u"files2")
            readEntries(m_seal.files2);
        else if (key == u"rules")
            readRules(m_seal.rules);
        else if (key == u"rules2")
            readRules(m_seal.rules2);
        else
            m_xml.skipCurrentElement();
    }

    void readEntries(QHash<QByteArray, Entry> &entries)
    {
        forEachKey([&](const QString &path) { entries.insert(path.toUtf8(), readEntry()); });
    }

    Entry readEntry()
    {
        Entry entry;
        if (m_xml.name() == u"data") {
            entry.sha1 = readData();
            return entry;
        }
        if (m_xml.name() != u"dict") {
            m_xml.raiseError(u"a file with neither digest nor dictionary"_s);
            return entry;
        }
        forEachKey([&](const QString &key) { readEntryValue(entry, key); });
        return entry;
    }

    void readEntryValue(Entry &entry, const QString &key)
    {
        if (key == u"hash")
            entry.sha1 = readData();
        else if (key == u"hash2")
            entry.sha256 = readData();
        else if (key == u"cdhash")
            entry.cdHash = readData();
        else if (key == u"symlink")
            entry.linkTarget = m_xml.readElementText().toUtf8();
        else if (key == u"requirement")
            entry.requirement = m_xml.readElementText();
        else if (key == u"optional")
            entry.isOptional = readTruth();
        else
            m_xml.skipCurrentElement();
    }

    void readRules(QList<Rule> &rules)
    {
        forEachKey([&](const QString &pattern) {
            if (rules.size() == mostRules)
                return m_xml.raiseError(u"too many rules"_s);
            rules.append(readRule(pattern));
        });
    }

    Rule readRule(const QString &pattern)
    {
        Rule rule{pattern};
        if (m_xml.name() != u"dict") {
            rule.coverage = readTruth() ? Coverage::sealed : Coverage::omitted;
            return rule;
        }
        forEachKey([&](const QString &key) { readRuleValue(rule, key); });
        return rule;
    }

    void readRuleValue(Rule &rule, const QString &key)
    {
        if (key == u"weight")
            rule.weight = m_xml.readElementText().toDouble();
        else if (const auto coverage = coverageNamed(key); coverage && readTruth())
            rule.coverage = *coverage;
        else if (!coverage)
            m_xml.skipCurrentElement();
    }

    static std::optional<Coverage> coverageNamed(const QString &key)
    {
        if (key == u"nested")
            return Coverage::nested;
        if (key == u"omit")
            return Coverage::omitted;
        return key == u"optional" ? std::optional(Coverage::optional) : std::nullopt;
    }

    bool readTruth()
    {
        const bool isTrue = m_xml.name() == u"true";
        m_xml.skipCurrentElement();
        return isTrue;
    }

    QByteArray readData()
    {
        const auto decoded =
            QByteArray::fromBase64Encoding(m_xml.readElementText().simplified().remove(u' ').toLatin1(),
                                           QByteArray::AbortOnBase64DecodingErrors);
        if (!decoded)
            m_xml.raiseError(u"data that is not base64"_s);
        return decoded.decoded;
    }

    QXmlStreamReader m_xml;
    CodeSeal m_seal;
};

/// The XML form of a list in another form, so that one reader knows what a seal is.
platform::Result<QByteArray> xmlForm(const QByteArray &bytes)
{
    if (!bytes.startsWith("bplist"))
        return bytes;
    const auto list = platform::propertyListFromData(bytes);
    return list ? platform::xmlPropertyListData(*list) : list.failure();
}

} // namespace

platform::Result<CodeSeal> readSeal(const QByteArray &bytes)
{
    if (bytes.size() > largestSeal)
        return platform::Error{u"larger than %1 MiB"_s.arg(largestSeal >> 20)};
    const auto xml = xmlForm(bytes);
    return xml ? SealReader(*xml).read() : xml.failure();
}

} // namespace toolchain::seal
