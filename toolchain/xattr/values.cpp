#include "xattr/values.h"

#include <QByteArrayView>
#include <QUtf8StringView>

#include <algorithm>
#include <cstdio>

namespace toolchain {

namespace {

constexpr std::size_t bytesInLine = 16;

std::string digitsOf(const std::string &bytes)
{
    constexpr const char *digits = "0123456789ABCDEF";
    std::string text;
    for (const char byte : bytes) {
        if (!text.empty())
            text += ' ';
        text += digits[static_cast<unsigned char>(byte) >> 4];
        text += digits[static_cast<unsigned char>(byte) & 15];
    }
    return text;
}

int valueOf(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    const char small = static_cast<char>(digit | 0x20);
    return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

std::string placeText(std::size_t place)
{
    char text[20] = {};
    std::snprintf(text, sizeof text, "%08zX", place);
    return text;
}

} // namespace

std::string inHex(const std::string &value)
{
    std::string text;
    for (std::size_t place = 0; place < value.size(); place += bytesInLine)
        text += digitsOf(value.substr(place, bytesInLine)) + '\n';
    return text;
}

std::optional<std::string> fromHex(const std::string &text)
{
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits), [](char letter) {
        return std::string_view(" \t\r\n").find(letter) == std::string_view::npos;
    });
    if (digits.size() % 2 != 0)
        return {};
    std::string bytes;
    for (std::size_t place = 0; place < digits.size(); place += 2) {
        const int high = valueOf(digits[place]);
        const int low = valueOf(digits[place + 1]);
        if (high < 0 || low < 0)
            return {};
        bytes += static_cast<char>(high << 4 | low);
    }
    return bytes;
}

bool isText(const std::string &value)
{
    return value.find('\0') == std::string::npos
        && QUtf8StringView(value.data(), qsizetype(value.size())).isValidUtf8();
}

std::string dumpOf(const std::string &value)
{
    constexpr std::size_t digitsWidth = bytesInLine * 3 - 1;
    std::string text;
    for (std::size_t place = 0; place < value.size(); place += bytesInLine) {
        std::string line = value.substr(place, bytesInLine);
        std::string digits = digitsOf(line);
        digits.resize(digitsWidth, ' ');
        std::replace_if(
            line.begin(), line.end(), [](char letter) { return letter < ' ' || letter > '~'; }, '.');
        text += placeText(place) + "  " + digits + "  |" + line + "|\n";
    }
    return text + placeText(value.size()) + '\n';
}

} // namespace toolchain
