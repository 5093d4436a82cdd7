#include "formats/xar/toc.h"

#include <QXmlStreamReader>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace toolchain::xar {

namespace {

constexpr quint64 largestNumber = quint64(1) << 60; // with room to add two
constexpr qsizetype mostFiles = 500'000;
constexpr qsizetype deepestFolder = 512;
constexpr qsizetype longestPath = 16'384; // characters
constexpr qsizetype mostPathCharacters = 64 << 20; // of all paths together

class TocReader {
public:
    explicit TocReader(const QByteArray &xml)
        : m_xml(xml)
    {
    }

    platform::Result<Toc> read()
    {
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() == u"toc")
                readTop();
            else if (m_xml.name() != u"xar")
                m_xml.skipCurrentElement();
        }
        if (m_xml.hasError() && m_outcome)
            m_outcome = platform::Error{u"line %1: %2"_s.arg(m_xml.lineNumber()).arg(m_xml.errorString())};
        if (m_outcome && m_toc.checksumStyle.isEmpty())
            m_outcome = platform::Error{u"the table has no checksum"_s};
        makePaths();
        if (!m_outcome)
            return m_outcome.failure();
        return std::move(m_toc);
    }

private:
    void fail(const QString &problem)
    {
        if (m_outcome)
            m_outcome = platform::Error{problem};
        m_xml.raiseError(problem);
    }

    void readTop()
    {
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() == u"checksum")
                readChecksumPlace();
            else if (m_xml.name() == u"signature")
                m_toc.signature = readSignature();
            else if (m_xml.name() == u"x-signature")
                m_toc.secondSignature = readSignature();
            else if (m_xml.name() == u"file")
                readFile(-1, 0);
            else
                m_xml.skipCurrentElement();
        }
    }

    QString style() const { return m_xml.attributes().value(u"style"_s).toString(); }

    quint64 readNumber()
    {
        const QString text = m_xml.readElementText().trimmed();
        bool isNumber = false;
        const quint64 number = text.toULongLong(&isNumber);
        if (!isNumber || number >= largestNumber)
            fail(u"\"%1\" is no place in the archive"_s.arg(text.left(40)));
        return number;
    }

    void readChecksumPlace()
    {
        m_toc.checksumStyle = style().toLower();
        while (m_xml.readNextStartElement())
            readRangeValue(m_toc.checksum);
    }

    void readRangeValue(HeapRange &place)
    {
        if (m_xml.name() == u"offset")
            place.offset = readNumber();
        else if (m_xml.name() == u"size")
            place.size = readNumber();
        else
            m_xml.skipCurrentElement();
    }

    TocSignature readSignature()
    {
        TocSignature signature{style(), {}, {}};
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() == u"KeyInfo")
                readKeyInfo(signature);
            else
                readRangeValue(signature.place);
        }
        return signature;
    }

    void readKeyInfo(TocSignature &signature)
    {
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() != u"X509Data") {
                m_xml.skipCurrentElement();
                continue;
            }
            while (m_xml.readNextStartElement())
                signature.certificates.append(QByteArray::fromBase64(m_xml.readElementText().toLatin1()));
        }
    }

    void readFile(qsizetype folder, qsizetype depth)
    {
        if (m_toc.files.size() == mostFiles || depth == deepestFolder)
            return fail(u"the archive has too many files or folders"_s);
        const qsizetype number = m_toc.files.size();
        m_toc.files.append(TocFile{});
        m_folders.append(folder);
        // what lies in a folder may stand before the folder's own name: paths are put together afterwards
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() == u"name")
                takeName(m_toc.files[number].path);
            else if (m_xml.name() == u"file")
                readFile(number, depth + 1);
            else
                readFileValue(number);
        }
        if (m_toc.files[number].path.isEmpty())
            fail(u"a file has no name"_s);
    }

    void takeName(QString &name)
    {
        const bool isEncoded = m_xml.attributes().value(u"enctype"_s) == u"base64";
        const QString text = m_xml.readElementText();
        if (!name.isEmpty())
            return;
        name = isEncoded ? QString::fromUtf8(QByteArray::fromBase64(text.toLatin1())) : text;
        if (name.isEmpty() || name == u"." || name == u".." || name.contains(u'/') || name.contains(QChar(0)))
            fail(u"\"%1\" is no name of a file"_s.arg(name.left(80)));
    }

    /// Puts the folders' paths in front of the names; a folder stands before what lies in it.
    void makePaths()
    {
        qsizetype total = 0;
        for (qsizetype number = 0; number < m_toc.files.size() && m_outcome; ++number) {
            const qsizetype folder = m_folders[number];
            if (folder >= 0)
                m_toc.files[number].path.prepend(m_toc.files[folder].path + u'/');
            total += m_toc.files[number].path.size();
            if (m_toc.files[number].path.size() > longestPath || total > mostPathCharacters)
                m_outcome = platform::Error{u"the archive's paths are too long"_s};
        }
    }

    void readFileValue(qsizetype number)
    {
        TocFile &file = m_toc.files[number];
        if (m_xml.name() == u"data")
            file.data = readPiece();
        else if (m_xml.name() == u"ea")
            file.attributes.append(readPiece());
        else if (m_xml.name() == u"type")
            takeType(file);
        else if (m_xml.name() == u"link")
            file.linkTarget = m_xml.readElementText();
        else if (m_xml.name() == u"mode")
            file.mode = m_xml.readElementText().trimmed().toUInt(nullptr, 8) & 0777;
        else
            m_xml.skipCurrentElement();
    }

    void takeType(TocFile &file)
    {
        file.typeText = m_xml.readElementText();
        file.type = file.typeText == u"file" ? TocFileType::file
            : file.typeText == u"directory"  ? TocFileType::folder
            : file.typeText == u"symlink"    ? TocFileType::link
                                             : TocFileType::other;
    }

    HeapPiece readPiece()
    {
        HeapPiece piece;
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() == u"offset") {
                piece.place.offset = readNumber();
            } else if (m_xml.name() == u"length") {
                piece.place.size = readNumber();
            } else if (m_xml.name() == u"size") {
                piece.size = readNumber();
            } else if (m_xml.name() == u"encoding") {
                piece.encoding = style();
                m_xml.skipCurrentElement();
            } else if (m_xml.name() == u"archived-checksum") {
                piece.archived = readChecksum();
            } else if (m_xml.name() == u"extracted-checksum") {
                piece.extracted = readChecksum();
            } else {
                m_xml.skipCurrentElement();
            }
        }
        return piece;
    }

    Checksum readChecksum()
    {
        const QString name = style().toLower();
        return {name, QByteArray::fromHex(m_xml.readElementText().toLatin1())};
    }

    QXmlStreamReader m_xml;
    platform::Outcome m_outcome;
    Toc m_toc;
    QList<qsizetype> m_folders; ///< of each file, the number of the folder that it lies in; -1 at the top
};

} // namespace

quint64 Toc::heapEnd() const
{
    quint64 end = checksum.end();
    for (const auto &value : {signature, secondSignature})
        end = std::max(end, value ? value->place.end() : 0);
    for (const TocFile &entry : files) {
        if (entry.data && entry.data->place.size > 0)
            end = std::max(end, entry.data->place.end());
        for (const HeapPiece &piece : entry.attributes)
            end = std::max(end, piece.place.end());
    }
    return end;
}

const TocFile *Toc::file(QStringView path) const
{
    const auto found =
        std::find_if(files.begin(), files.end(), [path](const TocFile &entry) { return entry.path == path; });
    return found == files.end() ? nullptr : &*found;
}

std::optional<QCryptographicHash::Algorithm> digestNamed(const QString &style)
{
    const QString name = style.toLower().remove(u'-');
    if (name == u"sha1")
        return QCryptographicHash::Sha1;
    if (name == u"sha256")
        return QCryptographicHash::Sha256;
    if (name == u"sha512")
        return QCryptographicHash::Sha512;
    return name == u"md5" ? std::optional(QCryptographicHash::Md5) : std::nullopt;
}

platform::Result<Toc> readToc(const QByteArray &xml)
{
    return TocReader(xml).read();
}

} // namespace toolchain::xar
