#include "formats/xar/unpacking.h"

#include <bzlib.h>
#include <lzma.h>
#include <zlib.h>

using namespace Qt::StringLiterals;

namespace toolchain::xar {

namespace {

constexpr qsizetype outputSize = 1 << 17; // bytes
constexpr quint64 mostMemory = 192 << 20; // bytes; what the largest usual dictionary of xz takes

class PlainUnpacker : public Unpacker {
public:
    bool add(QByteArrayView bytes, const ByteSink &sink) override { return sink(bytes); }
    bool isFinished() const override { return true; }
};

/// What the three libraries have in common: their steps.
template <typename Stream>
class StreamUnpacker : public Unpacker {
public:
    bool isFinished() const override { return m_isFinished; }

    bool add(QByteArrayView bytes, const ByteSink &sink) override
    {
        m_stream.next_in = reinterpret_cast<decltype(m_stream.next_in)>(const_cast<char *>(bytes.data()));
        m_stream.avail_in = decltype(m_stream.avail_in)(bytes.size());
        bool hasMore = true;
        while (hasMore && !m_isFinished) {
            m_stream.next_out = reinterpret_cast<decltype(m_stream.next_out)>(m_output.data());
            m_stream.avail_out = decltype(m_stream.avail_out)(m_output.size());
            if (!step())
                return false;
            const qsizetype length = m_output.size() - qsizetype(m_stream.avail_out);
            if (length > 0 && !sink(QByteArrayView(m_output).first(length)))
                return false;
            hasMore = m_stream.avail_in > 0 || m_stream.avail_out == 0;
        }
        return m_stream.avail_in == 0;
    }

protected:
    /// Lets the library work once; false if the stream is damaged.
    virtual bool step() = 0;

    Stream m_stream{};
    bool m_isFinished = false;

private:
    QByteArray m_output = QByteArray(outputSize, Qt::Uninitialized);
};

class ZlibUnpacker : public StreamUnpacker<z_stream> {
public:
    ZlibUnpacker() { inflateInit2(&m_stream, 15 + 32); } // 32: with the header of gzip as well
    ~ZlibUnpacker() override { inflateEnd(&m_stream); }

protected:
    bool step() override
    {
        const int outcome = inflate(&m_stream, Z_NO_FLUSH);
        m_isFinished = outcome == Z_STREAM_END;
        return outcome == Z_OK || outcome == Z_STREAM_END || outcome == Z_BUF_ERROR;
    }
};

class Bzip2Unpacker : public StreamUnpacker<bz_stream> {
public:
    Bzip2Unpacker() { BZ2_bzDecompressInit(&m_stream, 0, 0); }
    ~Bzip2Unpacker() override { BZ2_bzDecompressEnd(&m_stream); }

protected:
    bool step() override
    {
        const int outcome = BZ2_bzDecompress(&m_stream);
        m_isFinished = outcome == BZ_STREAM_END;
        return outcome == BZ_OK || outcome == BZ_STREAM_END;
    }
};

class XzUnpacker : public StreamUnpacker<lzma_stream> {
public:
    XzUnpacker() { m_isReady = lzma_auto_decoder(&m_stream, mostMemory, 0) == LZMA_OK; }
    ~XzUnpacker() override { lzma_end(&m_stream); }

protected:
    bool step() override
    {
        const lzma_ret outcome = m_isReady ? lzma_code(&m_stream, LZMA_RUN) : LZMA_PROG_ERROR;
        m_isFinished = outcome == LZMA_STREAM_END;
        return outcome == LZMA_OK || outcome == LZMA_STREAM_END || outcome == LZMA_BUF_ERROR;
    }

private:
    bool m_isReady = false;
};

} // namespace

std::unique_ptr<Unpacker> unpackerFor(const QString &encoding)
{
    if (encoding.isEmpty() || encoding == u"application/octet-stream")
        return std::make_unique<PlainUnpacker>();
    if (encoding == u"application/x-gzip" || encoding == u"application/zlib")
        return std::make_unique<ZlibUnpacker>();
    if (encoding == u"application/x-bzip2")
        return std::make_unique<Bzip2Unpacker>();
    if (encoding == u"application/x-lzma" || encoding == u"application/x-xz")
        return makeXzUnpacker();
    return nullptr;
}

std::unique_ptr<Unpacker> makeXzUnpacker()
{
    return std::make_unique<XzUnpacker>();
}

} // namespace toolchain::xar
