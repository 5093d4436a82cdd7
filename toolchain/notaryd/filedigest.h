#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

struct evp_md_ctx_st;

namespace notaryd {

/// A digest that grows with the bytes.
class Digest {
public:
    enum class Kind { sha256, md5 };
    explicit Digest(Kind kind = Kind::sha256);
    void add(const char *bytes, qint64 length);
    /// The digest's bytes. Once.
    [[nodiscard]] QByteArray result();

private:
    const std::unique_ptr<evp_md_ctx_st, void (*)(evp_md_ctx_st *)> m_context;
};

/// SHA-256 in 64 lower-case hexadecimal digits; empty for a file that cannot be read.
[[nodiscard]] QByteArray digestOfFile(const QString &path);

} // namespace notaryd
