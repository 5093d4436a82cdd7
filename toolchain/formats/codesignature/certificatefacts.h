#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

namespace toolchain::codesignature {

/// What requirements ask of a certificate. It is parsed when it is asked for the first time, and once, which
/// takes libcrypto longer than anything else here; a certificate that is none has no facts.
class CertificateFacts {
public:
    explicit CertificateFacts(const QByteArray &der);

    /// A part of the subject by the name that requirements use, such as "CN"; nothing if it has none.
    [[nodiscard]] std::optional<QString> subject(const QString &name) const;
    /// "CN" of the subject; empty if it has none.
    [[nodiscard]] QString commonName() const { return subject(QStringLiteral("CN")).value_or(QString()); }
    /// The content of an extension by the text of its identifier: of a text or a date the characters.
    [[nodiscard]] std::optional<QByteArray> extension(const QString &oid) const;
    /// Whether one of the certificate's policies is this one.
    [[nodiscard]] bool hasPolicy(const QString &oid) const;
    /// SHA-1 of the whole certificate.
    [[nodiscard]] QByteArray sha1() const;

private:
    struct Parsed;
    [[nodiscard]] const Parsed &parsed() const;

    QByteArray m_der;
    mutable std::shared_ptr<const Parsed> m_parsed;
};

} // namespace toolchain::codesignature
