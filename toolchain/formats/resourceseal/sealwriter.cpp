#include "formats/resourceseal/sealformat.h"

#include <algorithm>

namespace toolchain::seal {

namespace {

constexpr qsizetype blockSize = 1 << 16; // bytes that are handed over at once
constexpr qsizetype longestLine = 76; // columns of Apple's writer, a tab being eight of them

/// Writes a property list with tabs, one element a line, as Apple's writer does.
class ListWriter {
public:
    explicit ListWriter(const SealSink &sink)
        : m_sink(sink)
    {
        m_bytes.reserve(blockSize + blockSize / 2);
        m_bytes = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                  "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                  "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                  "<plist version=\"1.0\">\n";
    }

    void key(QByteArrayView name)
    {
        indent();
        m_bytes += "<key>";
        text(name);
        m_bytes += "</key>\n";
    }
    void beginDictionary()
    {
        line("<dict>");
        ++m_depth;
    }
    void endDictionary()
    {
        --m_depth;
        line("</dict>");
    }
    void emptyDictionary() { line("<dict/>"); }
    void yes() { line("<true/>"); }
    void no() { line("<false/>"); }
    void real(double value)
    {
        indent();
        m_bytes += "<real>" + QByteArray::number(value, 'g', 17) + "</real>\n";
    }
    void string(QByteArrayView value)
    {
        indent();
        m_bytes += "<string>";
        text(value);
        m_bytes += "</string>\n";
    }
    void data(const QByteArray &value)
    {
        line("<data>");
        const QByteArray encoded = value.toBase64();
        const qsizetype width = longestLine - 8 * std::min<qsizetype>(m_depth, 8);
        for (qsizetype from = 0; from < encoded.size(); from += width)
            line(QByteArrayView(encoded).sliced(from, std::min(width, encoded.size() - from)));
        line("</data>");
    }

    /// Whether the sink has taken everything.
    [[nodiscard]] bool finish()
    {
        m_bytes += "</plist>\n";
        handOver();
        return m_isTaken;
    }

private:
    void indent()
    {
        if (m_bytes.size() >= blockSize)
            handOver();
        m_bytes.append(m_depth, '\t');
    }
    void handOver()
    {
        m_isTaken = m_isTaken && m_sink(m_bytes);
        m_bytes.truncate(0);
    }
    void line(QByteArrayView content)
    {
        indent();
        m_bytes.append(content);
        m_bytes += '\n';
    }
    void text(QByteArrayView value)
    {
        for (const char character : value) {
            if (character == '&')
                m_bytes += "&amp;";
            else if (character == '<')
                m_bytes += "&lt;";
            else if (character == '>')
                m_bytes += "&gt;";
            else
                m_bytes += character;
        }
    }

    const SealSink &m_sink;
    QByteArray m_bytes; ///< that the sink has not got yet
    bool m_isTaken = true;
    qsizetype m_depth = 0;
};

void writeData(ListWriter &list, QByteArrayView key, const QByteArray &value)
{
    if (value.isEmpty())
        return;
    list.key(key);
    list.data(value);
}

void writeEntry(ListWriter &list, const Entry &entry)
{
    const bool isBare = !entry.sha1.isEmpty() && entry.sha256.isEmpty() && !entry.isOptional;
    if (isBare) {
        list.data(entry.sha1);
        return;
    }
    list.beginDictionary();
    writeData(list, "cdhash", entry.cdHash);
    writeData(list, "hash", entry.sha1);
    writeData(list, "hash2", entry.sha256);
    if (entry.isOptional) {
        list.key("optional");
        list.yes();
    }
    if (entry.isNested()) {
        list.key("requirement");
        list.string(entry.requirement.toUtf8());
    }
    if (entry.isLink()) {
        list.key("symlink");
        list.string(entry.linkTarget);
    }
    list.endDictionary();
}

void writeEntries(ListWriter &list, QByteArrayView key, const EntrySource &entries)
{
    list.key(key);
    bool isEmpty = true;
    entries([&](const QByteArray &path, const Entry &entry) {
        if (isEmpty)
            list.beginDictionary();
        isEmpty = false;
        list.key(path);
        writeEntry(list, entry);
    });
    if (isEmpty)
        list.emptyDictionary();
    else
        list.endDictionary();
}

EntrySource sourceOf(std::vector<NamedEntry> entries)
{
    std::sort(entries.begin(), entries.end(), [](const NamedEntry &left, const NamedEntry &right) {
        return comesBefore(left.path, right.path);
    });
    return [entries = std::move(entries)](const EntryVisitor &visit) {
        for (const NamedEntry &named : entries)
            visit(named.path, named.entry);
    };
}

/// A key of a rule whose value is true; the writer's keys come in their order: nested, omit, optional,
/// weight.
void writeTruth(ListWriter &list, const Rule &rule, Coverage coverage, QByteArrayView key)
{
    if (rule.coverage != coverage)
        return;
    list.key(key);
    list.yes();
}

void writeRule(ListWriter &list, const Rule &rule)
{
    list.key(rule.pattern.toUtf8());
    const bool isPlain = rule.weight == 1;
    if (isPlain && rule.coverage == Coverage::sealed)
        return list.yes();
    if (isPlain && rule.coverage == Coverage::omitted)
        return list.no();
    list.beginDictionary();
    writeTruth(list, rule, Coverage::nested, "nested");
    writeTruth(list, rule, Coverage::omitted, "omit");
    writeTruth(list, rule, Coverage::optional, "optional");
    if (!isPlain) {
        list.key("weight");
        list.real(rule.weight);
    }
    list.endDictionary();
}

void writeRules(ListWriter &list, QByteArrayView key, const RuleSet &rules)
{
    list.key(key);
    list.beginDictionary();
    for (const Rule &rule : rules.rules())
        writeRule(list, rule);
    list.endDictionary();
}

/// Where the lead byte of a character of four bytes belongs among those of three: its code units are
/// surrogates, which come before U+E000.
int rankOf(char byte)
{
    const int value = uchar(byte);
    if (value >= 0xf0)
        return 0xee * 2 - 1;
    return value * 2;
}

} // namespace

bool comesBefore(QByteArrayView left, QByteArrayView right)
{
    const auto [one, other] = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
    if (one == left.end() || other == right.end())
        return one == left.end() && other != right.end();
    const int ranks[] = {rankOf(*one), rankOf(*other)};
    return ranks[0] != ranks[1] ? ranks[0] < ranks[1] : uchar(*one) < uchar(*other);
}

bool writeSeal(const SealSink &sink, const SealContents &contents)
{
    ListWriter list(sink);
    list.beginDictionary();
    writeEntries(list, "files", contents.files);
    writeEntries(list, "files2", contents.files2);
    writeRules(list, "rules", contents.rules);
    writeRules(list, "rules2", contents.rules2);
    list.endDictionary();
    return list.finish();
}

QByteArray sealBytes(std::vector<NamedEntry> files, std::vector<NamedEntry> files2, const RuleSet &rules,
                     const RuleSet &rules2)
{
    QByteArray bytes;
    const SealSink sink = [&bytes](QByteArrayView more) {
        bytes.append(more);
        return true;
    };
    (void)writeSeal(sink, {sourceOf(std::move(files)), sourceOf(std::move(files2)), rules, rules2});
    return bytes;
}

} // namespace toolchain::seal
