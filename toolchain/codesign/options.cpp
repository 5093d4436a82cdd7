#include "codesign/options.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace toolchain::codesign {

namespace {

enum class Value { none, required, optional };

struct Known {
    const char *name;
    char letter; ///< 0: none
    Value value;
};
constexpr std::array knownOptions{Known{"sign", 's', Value::required},
                                  Known{"verify", 0, Value::none},
                                  Known{"display", 'd', Value::none},
                                  Known{"remove-signature", 0, Value::none},
                                  Known{"force", 'f', Value::none},
                                  Known{"deep", 0, Value::none},
                                  Known{"options", 'o', Value::required},
                                  Known{"timestamp", 0, Value::optional},
                                  Known{"entitlements", 0, Value::required},
                                  Known{"identifier", 'i', Value::required},
                                  Known{"requirements", 'r', Value::required},
                                  Known{"test-requirement", 'R', Value::required},
                                  Known{"prefix", 0, Value::required},
                                  Known{"digest-algorithm", 0, Value::required},
                                  Known{"preserve-metadata", 0, Value::optional},
                                  Known{"signature-size", 0, Value::required},
                                  Known{"strict", 0, Value::optional},
                                  Known{"verbose", 0, Value::optional},
                                  Known{"help", 'h', Value::none}};

const Known *withLetter(char letter)
{
    const auto found = std::find_if(knownOptions.begin(), knownOptions.end(),
                                    [letter](const Known &known) { return known.letter == letter; });
    return found == knownOptions.end() ? nullptr : &*found;
}

/// The option that a name or the beginning of one means; nothing if it means none, or several.
const Known *withName(const std::string &name)
{
    const Known *shortened = nullptr;
    for (const Known &known : knownOptions) {
        const std::string whole = known.name;
        if (whole == name)
            return &known;
        if (!whole.starts_with(name))
            continue;
        if (shortened)
            return nullptr;
        shortened = &known;
    }
    return shortened;
}

class Reader {
public:
    explicit Reader(const std::vector<std::string> &words)
        : m_words(words)
    {
    }

    Options read()
    {
        bool optionsEnded = false;
        for (; m_at < m_words.size() && m_options.complaint.isEmpty(); ++m_at) {
            const std::string &word = m_words[m_at];
            if (optionsEnded || word.size() < 2 || word[0] != '-')
                m_options.paths.append(QString::fromStdString(word));
            else if (word == "--")
                optionsEnded = true;
            else if (word[1] == '-')
                takeLong(word.substr(2));
            else
                takeLetters(word);
        }
        settleOperation();
        return m_options;
    }

private:
    void takeLong(const std::string &text)
    {
        const auto equals = text.find('=');
        const std::string name = text.substr(0, equals);
        const Known *known = withName(name);
        if (!known)
            return complain(u"unrecognized option `--%1'"_s.arg(QString::fromStdString(name)));
        if (equals != std::string::npos && known->value == Value::none)
            return complain(u"option `--%1' doesn't allow an argument"_s.arg(QString::fromStdString(name)));
        if (equals != std::string::npos)
            return take(*known, QString::fromStdString(text.substr(equals + 1)));
        if (known->value == Value::required)
            return takeNextWord(*known);
        take(*known, QString());
    }

    void takeLetters(const std::string &word)
    {
        for (std::size_t at = 1; at < word.size(); ++at) {
            if (word[at] == 'v') {
                ++m_letterV;
                continue;
            }
            const Known *known = withLetter(word[at]);
            if (!known)
                return complain(u"invalid option -- %1"_s.arg(QLatin1Char(word[at])));
            if (known->value != Value::required) {
                take(*known, QString());
                continue;
            }
            if (at + 1 < word.size())
                return take(*known, QString::fromStdString(word.substr(at + 1)));
            return takeNextWord(*known);
        }
    }

    void takeNextWord(const Known &known)
    {
        if (m_at + 1 == m_words.size())
            return complain(u"option requires an argument -- %1"_s.arg(QLatin1StringView(known.name)));
        take(known, QString::fromStdString(m_words[++m_at]));
    }

    void take(const Known &known, const QString &value)
    {
        const std::string name = known.name;
        if (name == "sign")
            m_options.identity = value;
        if (name == "sign")
            return choose(Operation::sign);
        if (name == "verify")
            return choose(Operation::verify);
        if (name == "display")
            return choose(Operation::display);
        if (name == "remove-signature")
            return choose(Operation::removeSignature);
        if (name == "help")
            m_wantsHelp = true;
        else if (name == "force")
            m_options.forces = true;
        else if (name == "deep")
            m_options.isDeep = true;
        else if (name == "strict")
            m_options.isStrict = true;
        else if (name == "verbose")
            takeVerbosity(value);
        else
            *fieldOf(name) = value.isNull() ? u""_s : value;
    }

    std::optional<QString> *fieldOf(const std::string &name)
    {
        const std::array<std::pair<const char *, std::optional<QString> *>, 10> fields{
            {{"options", &m_options.flags},
             {"timestamp", &m_options.timestamp},
             {"entitlements", &m_options.entitlements},
             {"identifier", &m_options.identifier},
             {"requirements", &m_options.requirements},
             {"test-requirement", &m_options.testRequirement},
             {"prefix", &m_options.prefix},
             {"digest-algorithm", &m_options.digests},
             {"preserve-metadata", &m_options.preserved},
             {"signature-size", &m_options.signatureSize}}};
        const auto *found = std::find_if(fields.begin(), fields.end(),
                                         [&name](const auto &field) { return name == field.first; });
        return found->second;
    }

    void takeVerbosity(const QString &value)
    {
        bool isNumber = true;
        const int level = value.isEmpty() ? 1 : value.toInt(&isNumber);
        if (!isNumber || level < 0)
            return complain(u"invalid argument `%1' of --verbose"_s.arg(value));
        m_options.verbosity += level;
    }

    void choose(Operation operation)
    {
        if (m_options.operation != Operation::none && m_options.operation != operation)
            complain(u"only one of --sign, --verify, --display and --remove-signature can be done"_s);
        m_options.operation = operation;
    }

    /// The letter v alone stands for --verify, beside another operation for --verbose.
    void settleOperation()
    {
        if (m_options.operation == Operation::none && m_letterV > 0) {
            m_options.operation = Operation::verify;
            --m_letterV;
        }
        m_options.verbosity += m_letterV;
        if (m_wantsHelp)
            m_options.operation = Operation::help;
    }

    void complain(const QString &complaint)
    {
        if (m_options.complaint.isEmpty())
            m_options.complaint = complaint;
    }

    const std::vector<std::string> &m_words;
    std::size_t m_at = 0;
    int m_letterV = 0;
    bool m_wantsHelp = false;
    Options m_options;
};

} // namespace

Options readOptions(const std::vector<std::string> &words)
{
    return Reader(words).read();
}

} // namespace toolchain::codesign
