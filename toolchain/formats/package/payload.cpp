#include "formats/package/payload.h"

#include "formats/bigendian.h"
#include "formats/xar/unpacking.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace toolchain::package {

namespace {

constexpr QByteArrayView xzMagic("\xfd"
                                 "7zXZ\0",
                                 6);
constexpr qsizetype longestMagic = 6; // bytes

/// Apple's container of xz streams: "pbzx", the usual length of a chunk, and for each chunk its length
/// unpacked and packed; one that did not get smaller stands there as it is.
class PbzxUnpacker : public xar::Unpacker {
public:
    bool add(QByteArrayView bytes, const ByteSink &sink) override
    {
        while (!bytes.isEmpty()) {
            if (m_left == 0 && !takeHead(bytes))
                return !m_isDamaged;
            if (m_left > 0 && !bytes.isEmpty() && !takeChunk(bytes, sink))
                return false;
        }
        return true;
    }

    bool isFinished() const override { return m_hasMagic && m_left == 0 && m_head.isEmpty(); }

private:
    static constexpr qsizetype fileHead = 12;
    static constexpr qsizetype chunkHead = 16;
    static constexpr quint64 largestChunk = quint64(1) << 30;

    /// False if more bytes are needed or the head is damaged.
    bool takeHead(QByteArrayView &bytes)
    {
        const qsizetype wanted = (m_hasMagic ? chunkHead : fileHead) - m_head.size();
        const qsizetype taken = std::min(wanted, bytes.size());
        m_head.append(bytes.first(taken));
        bytes = bytes.sliced(taken);
        if (taken < wanted)
            return false;
        if (m_hasMagic)
            beginChunk();
        m_hasMagic = true;
        m_head.clear();
        return !m_isDamaged;
    }

    void beginChunk()
    {
        m_size = bigEndianAt<quint64>(m_head, 0);
        m_left = bigEndianAt<quint64>(m_head, 8);
        m_isDamaged =
            m_left == 0 || m_left > largestChunk || m_size > largestChunk || m_left > m_size + 1'024;
        m_isPlain = m_left == m_size;
        m_received = 0;
        if (!m_isPlain)
            m_xz = xar::makeXzUnpacker();
    }

    bool takeChunk(QByteArrayView &bytes, const ByteSink &sink)
    {
        const QByteArrayView part = bytes.first(qsizetype(std::min<quint64>(m_left, quint64(bytes.size()))));
        bytes = bytes.sliced(part.size());
        m_left -= quint64(part.size());
        const auto count = [&](QByteArrayView unpacked) {
            m_received += quint64(unpacked.size());
            return m_received <= m_size && sink(unpacked);
        };
        if (!(m_isPlain ? count(part) : m_xz->add(part, count)))
            return false;
        return m_left > 0 || (m_received == m_size && (m_isPlain || m_xz->isFinished()));
    }

    QByteArray m_head;
    bool m_hasMagic = false;
    bool m_isDamaged = false;
    bool m_isPlain = false;
    quint64 m_size = 0; ///< of the chunk unpacked
    quint64 m_left = 0; ///< of the chunk's packed bytes
    quint64 m_received = 0;
    std::unique_ptr<xar::Unpacker> m_xz;
};

std::unique_ptr<xar::Unpacker> unpackerByMagic(QByteArrayView first)
{
    if (first.startsWith("pbzx"))
        return std::make_unique<PbzxUnpacker>();
    if (first.startsWith("\x1f\x8b"))
        return xar::unpackerFor(u"application/x-gzip"_s);
    if (first.startsWith("BZh"))
        return xar::unpackerFor(u"application/x-bzip2"_s);
    if (first.startsWith(xzMagic))
        return xar::makeXzUnpacker();
    return xar::unpackerFor({});
}

bool isPayload(const xar::TocFile &file)
{
    return file.type == xar::TocFileType::file
        && (file.path == u"Payload" || (file.path.endsWith(u"/Payload") && file.path.count(u'/') == 1));
}

} // namespace

/// Finds out how the bytes are packed, and hands them on.
class PayloadReader::Stream {
public:
    explicit Stream(const CpioVisitor &visitor)
        : m_reader(visitor)
    {
    }

    bool add(QByteArrayView bytes)
    {
        if (m_unpacker)
            return unpack(bytes);
        m_first.append(bytes);
        return m_first.size() < longestMagic || begin();
    }

    platform::Outcome finish()
    {
        if (!m_failure && m_isWhole && !m_unpacker)
            begin();
        if (m_failure)
            return platform::Error{*m_failure};
        if (!m_isWhole || !m_unpacker || !m_unpacker->isFinished())
            return platform::Error{u"damaged"_s};
        return m_reader.finish();
    }

private:
    bool begin()
    {
        m_unpacker = unpackerByMagic(m_first);
        return unpack(std::exchange(m_first, {}));
    }

    bool unpack(QByteArrayView bytes)
    {
        m_isWhole = m_isWhole && m_unpacker->add(bytes, [this](QByteArrayView unpacked) {
            const auto outcome = m_reader.add(unpacked);
            if (!outcome)
                m_failure = outcome.error();
            return bool(outcome);
        });
        return m_isWhole;
    }

    CpioReader m_reader;
    QByteArray m_first;
    std::unique_ptr<xar::Unpacker> m_unpacker;
    std::optional<QString> m_failure;
    bool m_isWhole = true;
};

PayloadReader::PayloadReader(const CpioVisitor &visitor)
    : m_stream(std::make_unique<Stream>(visitor))
{
}

PayloadReader::~PayloadReader() = default;

bool PayloadReader::add(QByteArrayView bytes)
{
    return m_stream->add(bytes);
}

platform::Outcome PayloadReader::finish()
{
    return m_stream->finish();
}

platform::Outcome readPayload(const xar::Archive &archive, const xar::TocFile &payload,
                              const CpioVisitor &visitor)
{
    PayloadReader reader(visitor);
    bool isTaken = true;
    const auto unpacked = archive.unpack(payload, [&](QByteArrayView bytes) {
        isTaken = reader.add(bytes);
        return isTaken;
    });
    if (!unpacked && isTaken)
        return unpacked;
    const auto outcome = reader.finish();
    return outcome ? outcome : platform::Outcome(platform::Error{payload.path + u": "_s + outcome.error()});
}

QList<const xar::TocFile *> payloadsOf(const xar::Archive &archive)
{
    QList<const xar::TocFile *> payloads;
    for (const xar::TocFile &file : archive.toc().files) {
        if (isPayload(file))
            payloads.append(&file);
    }
    return payloads;
}

} // namespace toolchain::package
