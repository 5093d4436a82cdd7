#include "formats/xar/toc.h"

#include <QXmlStreamReader>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace toolchain::xar {

namespace {

constexpr qsizetype base64Line = 72; // characters

/// The stretches of the heap that files claim, each once, moved up to stand behind `first` without gaps.
platform::Result<QList<Move>> movesBehind(const Toc &toc, quint64 first)
{
    QList<HeapRange> ranges;
    for (const TocFile &file : toc.files) {
        if (file.data && file.data->place.size > 0)
            ranges.append(file.data->place);
        for (const HeapPiece &piece : file.attributes)
            ranges.append(piece.place);
    }
    std::sort(ranges.begin(), ranges.end(),
              [](const HeapRange &left, const HeapRange &right) { return left.offset < right.offset; });
    QList<Move> moves;
    for (const HeapRange &range : ranges) {
        if (range.offset < toc.checksum.end())
            return platform::Error{u"a file lies where the checksum of the table does"_s};
        const bool isJoined = !moves.isEmpty() && range.offset <= moves.last().from.end();
        if (!isJoined)
            moves.append({{range.offset, 0}, 0});
        HeapRange &from = moves.last().from;
        from.size = std::max(from.end(), range.end()) - from.offset;
    }
    for (Move &move : moves) {
        move.to = first;
        first += move.from.size;
    }
    return moves;
}

quint64 newOffset(const QList<Move> &moves, quint64 offset)
{
    for (const Move &move : moves) {
        if (offset >= move.from.offset && offset < move.from.end())
            return move.to + (offset - move.from.offset);
    }
    return moves.isEmpty() ? 0 : moves.first().to; // of an empty file, which has no bytes anywhere
}

QString base64Lines(const QByteArray &bytes)
{
    const QString text = QString::fromLatin1(bytes.toBase64());
    QStringList lines;
    for (qsizetype from = 0; from < text.size(); from += base64Line)
        lines.append(text.mid(from, base64Line));
    return lines.join(u"\r\n"_s);
}

QString signatureElement(const QString &name, const QString &style, const HeapRange &place,
                         const QList<QByteArray> &certificates)
{
    QString text = u"  <%1 style=\"%2\">\n   <offset>%3</offset>\n   <size>%4</size>\n"_s.arg(name, style)
                       .arg(place.offset)
                       .arg(place.size);
    text += u"   <KeyInfo xmlns=\"http://www.w3.org/2000/09/xmldsig#\">\n    <X509Data>\n"_s;
    for (const QByteArray &certificate : certificates)
        text += u"     <X509Certificate>"_s + base64Lines(certificate) + u"</X509Certificate>\n"_s;
    return text + u"    </X509Data>\n   </KeyInfo>\n  </%1>\n"_s.arg(name);
}

/// A stretch of the table's text that is replaced.
struct Edit {
    qsizetype from = 0;
    qsizetype to = 0;
    QString text;
};

/// Finds in the table's text what has to change, and changes nothing else of it.
class TocEditor {
public:
    TocEditor(QString text, const QList<Move> &moves, QString signatures)
        : m_text(std::move(text))
        , m_xml(m_text)
        , m_moves(moves)
        , m_signatures(std::move(signatures))
    {
    }

    platform::Result<QByteArray> edited()
    {
        while (!m_xml.atEnd()) {
            m_xml.readNext();
            // behind a tag the reader stands where the tag ends; elsewhere it has read on already
            const qsizetype tagEnd = m_xml.characterOffset();
            if (m_xml.isStartElement())
                begin(m_text.lastIndexOf(u'<', tagEnd - 1));
            else if (m_xml.isEndElement())
                end(m_text.lastIndexOf(u'<', tagEnd - 1));
        }
        if (m_xml.hasError() || !m_isSigned)
            return platform::Error{u"the table cannot be rewritten"_s};
        for (auto edit = m_edits.rbegin(); edit != m_edits.rend(); ++edit)
            m_text.replace(edit->from, edit->to - edit->from, edit->text);
        return m_text.toUtf8();
    }

private:
    [[nodiscard]] bool isIn(qsizetype levelsUp, QStringView name) const
    {
        return m_elements.size() > levelsUp && m_elements[m_elements.size() - 1 - levelsUp] == name;
    }
    [[nodiscard]] bool isOffsetOfPiece() const
    {
        return isIn(0, u"offset") && (isIn(1, u"data") || isIn(1, u"ea"));
    }
    [[nodiscard]] bool isTopSignature() const
    {
        return (isIn(0, u"signature") || isIn(0, u"x-signature")) && isIn(1, u"toc");
    }

    void begin(qsizetype tag)
    {
        m_elements.append(m_xml.name().toString());
        if (isTopSignature())
            m_from = lineStart(tag);
        else if (isOffsetOfPiece())
            m_from = m_xml.characterOffset();
    }

    void end(qsizetype tag)
    {
        if (isTopSignature()) {
            m_edits.append({m_from, lineEnd(m_xml.characterOffset()), {}});
        } else if (isOffsetOfPiece()) {
            const quint64 offset = QStringView(m_text).mid(m_from, tag - m_from).trimmed().toULongLong();
            m_edits.append({m_from, tag, QString::number(newOffset(m_moves, offset))});
        } else if (isIn(0, u"checksum") && isIn(1, u"toc")) {
            const qsizetype place = lineEnd(m_xml.characterOffset());
            const bool endsLine = place > 0 && m_text[place - 1] == u'\n';
            m_edits.append({place, place, (endsLine ? u""_s : u"\n"_s) + m_signatures});
            m_isSigned = true;
        }
        m_elements.removeLast();
    }

    /// Where the blanks before an element begin.
    [[nodiscard]] qsizetype lineStart(qsizetype place) const
    {
        while (place > 0 && (m_text[place - 1] == u' ' || m_text[place - 1] == u'\t'))
            --place;
        return place;
    }

    /// Behind the line end that follows an element, if one does.
    [[nodiscard]] qsizetype lineEnd(qsizetype place) const
    {
        return place < m_text.size() && m_text[place] == u'\n' ? place + 1 : place;
    }

    QString m_text;
    QXmlStreamReader m_xml;
    const QList<Move> &m_moves;
    const QString m_signatures;
    QStringList m_elements;
    qsizetype m_from = 0;
    QList<Edit> m_edits; ///< in the order of the text
    bool m_isSigned = false;
};

} // namespace

platform::Result<SignedToc> tocWithSignatures(const QByteArray &xml, const Toc &toc,
                                              const SignatureRoom &room)
{
    SignedToc result;
    result.rsa = {toc.checksum.end(), room.rsaSize};
    result.cms = {result.rsa.end(), room.cmsSize};
    const auto moves = movesBehind(toc, result.cms.end());
    if (!moves)
        return moves.failure();
    result.moves = *moves;
    const QString signatures = signatureElement(u"signature"_s, u"RSA"_s, result.rsa, room.certificates)
        + signatureElement(u"x-signature"_s, u"CMS"_s, result.cms, room.certificates);
    const auto edited = TocEditor(QString::fromUtf8(xml), result.moves, signatures).edited();
    if (!edited)
        return edited.failure();
    result.xml = *edited;
    return result;
}

} // namespace toolchain::xar
