#include "notaryd/partlist.h"

#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

namespace notaryd {

namespace {

UploadedPart partFrom(QXmlStreamReader &reader)
{
    UploadedPart part;
    while (reader.readNextStartElement()) {
        const QString name = reader.name().toString();
        const QString text = reader.readElementText(QXmlStreamReader::SkipChildElements);
        if (name == u"PartNumber"_s)
            part.number = text.toInt();
        else if (name == u"ETag"_s)
            part.etag = QString(text).remove(u'"').toLatin1();
    }
    return part;
}

} // namespace

std::optional<QList<UploadedPart>> partsIn(const QByteArray &list)
{
    QXmlStreamReader reader(list);
    QList<UploadedPart> parts;
    if (!reader.readNextStartElement() || reader.name() != u"CompleteMultipartUpload"_s)
        return std::nullopt;
    while (reader.readNextStartElement()) {
        if (reader.name() == u"Part"_s)
            parts.append(partFrom(reader));
        else
            reader.skipCurrentElement();
    }
    return reader.hasError() || parts.isEmpty() ? std::nullopt : std::optional(parts);
}

} // namespace notaryd
