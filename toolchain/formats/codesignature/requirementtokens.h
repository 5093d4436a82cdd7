#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include "platform/result.h"

namespace toolchain::codesignature {

enum class TokenKind {
    word, ///< letters, digits, dots, hyphens and underscores: a keyword, a key or a string
    text, ///< between quotes, or bytes as 0x…
    hash, ///< H"…"
    symbol, ///< ( ) [ ] = => ! < <= > >= * ; -
    end
};

/// A piece of a requirement's text.
struct Token {
    TokenKind kind = TokenKind::end;
    QByteArray bytes; ///< without quotes; a hash in binary
    qsizetype at = 0; ///< where it begins in the text
};

/// Takes a text apart; comments and blanks fall away. The last token is the end. The error tells the place.
[[nodiscard]] platform::Result<QList<Token>> requirementTokens(const QString &text);

} // namespace toolchain::codesignature
