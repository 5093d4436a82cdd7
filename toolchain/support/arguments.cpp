#include "support/arguments.h"

#include <algorithm>

namespace toolchain {

namespace {

const Option *optionNamed(const std::string &name, const std::vector<Option> &known)
{
    const auto found = std::find_if(known.begin(), known.end(), [&name](const Option &option) {
        return std::find(option.names.begin(), option.names.end(), name) != option.names.end();
    });
    return found == known.end() ? nullptr : &*found;
}

bool isOption(const std::string &word)
{
    return word.size() > 1 && word.front() == '-';
}

/// The letters of a word such as `-vv`; empty unless each of them is an option that can share a hyphen.
std::vector<const Option *> clusterOf(const std::string &word, const std::vector<Option> &known)
{
    std::vector<const Option *> cluster;
    for (const char letter : word.substr(1)) {
        const Option *option = optionNamed({'-', letter}, known);
        if (!option || option->value == OptionValue::required)
            return {};
        cluster.push_back(option);
    }
    return cluster;
}

class Parser {
public:
    Parser(const std::vector<std::string> &words, const std::vector<Option> &known)
        : m_words(words)
        , m_known(known)
    {
    }

    ParsedArguments parse()
    {
        for (; m_at < m_words.size() && m_parsed.error.empty(); ++m_at) {
            const std::string &word = m_words[m_at];
            if (m_optionsEnded || !isOption(word))
                m_parsed.operands.push_back(word);
            else if (word == "--")
                m_optionsEnded = true;
            else
                takeOption(word);
        }
        return m_parsed;
    }

private:
    void takeOption(const std::string &word)
    {
        const auto equals = word.starts_with("--") ? word.find('=') : std::string::npos;
        const std::string name = word.substr(0, equals);
        if (const Option *option = optionNamed(name, m_known)) {
            if (equals == std::string::npos)
                takeWithoutEquals(*option, name);
            else
                takeWithEquals(*option, name, word.substr(equals + 1));
            return;
        }
        const auto cluster = clusterOf(word, m_known);
        if (cluster.empty())
            m_parsed.error = "unrecognized option '" + word + "'";
        for (const Option *option : cluster)
            m_parsed.options[option->names.front()];
    }

    void takeWithoutEquals(const Option &option, const std::string &name)
    {
        std::string &value = m_parsed.options[option.names.front()];
        if (option.value != OptionValue::required)
            return;
        if (m_at + 1 < m_words.size())
            value = m_words[++m_at];
        else
            m_parsed.error = "option '" + name + "' requires a value";
    }

    void takeWithEquals(const Option &option, const std::string &name, const std::string &value)
    {
        if (option.value == OptionValue::none)
            m_parsed.error = "option '" + name + "' takes no value";
        else
            m_parsed.options[option.names.front()] = value;
    }

    const std::vector<std::string> &m_words;
    const std::vector<Option> &m_known;
    ParsedArguments m_parsed;
    std::size_t m_at = 0;
    bool m_optionsEnded = false;
};

} // namespace

std::string ParsedArguments::value(const std::string &name) const
{
    const auto found = options.find(name);
    return found == options.end() ? std::string() : found->second;
}

ParsedArguments parseArguments(const std::vector<std::string> &words, const std::vector<Option> &known)
{
    return Parser(words, known).parse();
}

std::vector<std::string> wordsOf(int argc, char **argv)
{
    return argc > 0 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

} // namespace toolchain
