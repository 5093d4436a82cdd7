#include "formats/xar/xartable.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace toolchain::xar {

namespace {

constexpr quint64 largestNumber = quint64(1) << 60; // with room to add two

/// Whether an element tells where a file's bytes or those of one of its attributes are.
bool isPiece(QStringView name)
{
    return name == u"data" || name == u"ea";
}

bool isSignature(QStringView name)
{
    return name == u"signature" || name == u"x-signature";
}

class TableReader {
public:
    explicit TableReader(const QByteArray &xml)
        : m_xml(xml)
    {
    }

    std::optional<Table> read()
    {
        while (!m_xml.atEnd()) {
            m_xml.readNext();
            if (m_xml.isStartElement())
                begin();
            else if (m_xml.isCharacters())
                m_text += m_xml.text();
            else if (m_xml.isEndElement())
                end();
        }
        if (m_xml.hasError() || !m_isSound || m_table.checksumStyle.isEmpty())
            return std::nullopt;
        for (std::size_t number = 0; number < m_pieceFiles.size(); ++number)
            m_table.pieces[qsizetype(number)].path = pathOf(m_pieceFiles[number]);
        return isSound() ? std::optional(m_table) : std::nullopt;
    }

private:
    struct File {
        std::size_t folder = 0; ///< its place in m_files and one; 0 at the top
        QString name; ///< may follow behind what lies in the file
    };

    void begin()
    {
        const QStringView name = m_xml.name();
        const QString style = m_xml.attributes().value(u"style"_s).toString();
        m_text.clear();
        m_isEncoded = m_xml.attributes().value(u"enctype"_s) == u"base64";
        if (name == u"file") {
            m_files.push_back({m_file, {}});
            m_file = m_files.size();
        } else if (isPiece(name)) {
            m_piece = {};
        } else if (name == u"archived-checksum") {
            m_piece.checksumStyle = style;
        } else if (name == u"checksum") {
            m_table.checksumStyle = style;
        } else if (name == u"signature") {
            m_table.signatureStyle = style;
        }
        m_elements.append(name.toString());
    }

    void end()
    {
        const QString name = m_elements.takeLast();
        const QString parent = m_elements.isEmpty() ? QString() : m_elements.last();
        if (name == u"offset"_s || name == u"size"_s || name == u"length"_s)
            takeNumber(name, parent);
        else if (name == u"name"_s && parent == u"file"_s)
            m_files[m_file - 1].name = m_isEncoded ? decoded(m_text) : m_text;
        else if (name == u"archived-checksum"_s)
            m_piece.checksum = QByteArray::fromHex(m_text.toLatin1());
        else if (name == u"X509Certificate"_s && m_elements.contains(u"signature"_s))
            takeCertificate();
        else if (isPiece(name))
            endPiece();
        else if (name == u"file"_s)
            endFile();
        m_text.clear();
    }

    void takeNumber(const QString &name, const QString &parent)
    {
        bool isNumber = false;
        const quint64 number = m_text.trimmed().toULongLong(&isNumber);
        m_isSound = m_isSound && isNumber && number < largestNumber;
        Place other;
        Place &place = parent == u"checksum"_s ? m_table.checksum
            : parent == u"signature"_s         ? m_table.signature
            : parent == u"x-signature"_s       ? m_otherSignature
            : isPiece(parent)                  ? m_piece.place
                                               : other;
        if (name == u"offset"_s)
            place.offset = number;
        else if (name
                 == (isPiece(parent) ? u"length"_s
                                     : u"size"_s)) // a file's size is that of its bytes unpacked
            place.size = number;
    }

    void takeCertificate()
    {
        // the signer's comes first, then those that vouch for it
        if (m_table.certificate.isEmpty())
            m_table.certificate = QByteArray::fromBase64(m_text.toLatin1());
    }

    void endPiece()
    {
        if (m_file == 0 || m_piece.place.size == 0)
            return;
        m_table.pieces.append(m_piece);
        m_pieceFiles.push_back(m_file);
    }

    void endFile()
    {
        const File &file = m_files[m_file - 1];
        if (file.folder == 0)
            m_table.topNames.append(file.name);
        m_file = file.folder;
    }

    QString pathOf(std::size_t file) const
    {
        QString path;
        for (; file != 0; file = m_files[file - 1].folder)
            path = path.isEmpty() ? m_files[file - 1].name : m_files[file - 1].name + u'/' + path;
        return path;
    }

    bool isSound()
    {
        m_table.reserved =
            std::max({m_table.checksum.end(), m_table.signature.end(), m_otherSignature.end()});
        return std::all_of(m_table.pieces.begin(), m_table.pieces.end(),
                           [this](const Piece &piece) { return piece.place.offset >= m_table.reserved; });
    }

    static QString decoded(const QString &text)
    {
        return QString::fromUtf8(QByteArray::fromBase64(text.toLatin1()));
    }

    QXmlStreamReader m_xml;
    QStringList m_elements;
    QString m_text;
    bool m_isEncoded = false;
    bool m_isSound = true;
    std::vector<File> m_files;
    std::size_t m_file = 0; ///< the place of the file that is being read in m_files and one
    std::vector<std::size_t> m_pieceFiles;
    Piece m_piece;
    Place m_otherSignature; ///< of a second signature, which newer archives have
    Table m_table;
};

void writeSignature(QXmlStreamWriter &xml, const Place &place, const QByteArray &certificate)
{
    xml.writeStartElement(u"signature"_s);
    xml.writeAttribute(u"style"_s, u"RSA"_s);
    xml.writeTextElement(u"offset"_s, QString::number(place.offset));
    xml.writeTextElement(u"size"_s, QString::number(place.size));
    xml.writeStartElement(u"KeyInfo"_s);
    xml.writeDefaultNamespace(u"http://www.w3.org/2000/09/xmldsig#"_s);
    xml.writeStartElement(u"X509Data"_s);
    xml.writeTextElement(u"X509Certificate"_s, QString::fromLatin1(certificate.toBase64()));
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndElement();
}

} // namespace

quint64 Table::heapEnd() const
{
    quint64 end = reserved;
    for (const Piece &piece : pieces)
        end = std::max(end, piece.place.end());
    return end;
}

std::optional<Table> readTable(const QByteArray &xml)
{
    return TableReader(xml).read();
}

QByteArray tableWithSignature(const QByteArray &xml, const Table &table, const QByteArray &certificate,
                              quint64 signatureSize)
{
    const Place signature{table.checksum.end(), signatureSize};
    QByteArray result;
    QXmlStreamReader reader(xml);
    QXmlStreamWriter writer(&result);
    QStringList elements;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && isSignature(reader.name())) {
            reader.skipCurrentElement();
            continue;
        }
        if (reader.isStartElement())
            elements.append(reader.name().toString());
        const bool isOffset =
            elements.size() > 1 && elements.last() == u"offset"_s && isPiece(elements[elements.size() - 2]);
        if (reader.isCharacters() && isOffset)
            writer.writeCharacters(
                QString::number(reader.text().toULongLong() - table.reserved + signature.end()));
        else if (!reader.hasError())
            writer.writeCurrentToken(reader);
        if (reader.isEndElement() && elements.takeLast() == u"checksum"_s)
            writeSignature(writer, signature, certificate);
    }
    return reader.hasError() ? QByteArray() : result;
}

} // namespace toolchain::xar
