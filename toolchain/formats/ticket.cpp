#include "formats/ticket.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include "support/wholefile.h"

using namespace Qt::StringLiterals;

namespace toolchain {

QByteArray jsonOf(const Ticket &ticket)
{
    const QJsonObject form{
        {u"note"_s, u"Left by a local stand-in for the notary service; it has no value for macOS."_s},
        {u"RequestUUID"_s, ticket.requestUUID},
        {u"seal"_s, QString::fromLatin1(ticket.sealDigest)},
    };
    return QJsonDocument(form).toJson();
}

std::optional<Ticket> ticketFromJson(const QByteArray &json)
{
    const QJsonObject form = QJsonDocument::fromJson(json).object();
    const Ticket ticket{form[u"RequestUUID"].toString(), form[u"seal"].toString().toLatin1()};
    return ticket.requestUUID.isEmpty() || ticket.sealDigest.isEmpty() ? std::nullopt : std::optional(ticket);
}

QString writeTicket(const QString &path, const Ticket &ticket)
{
    return QString::fromStdString(writeWholeFile(path.toStdString(), jsonOf(ticket).toStdString()));
}

std::optional<Ticket> readTicket(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return ticketFromJson(file.readAll());
}

} // namespace toolchain
