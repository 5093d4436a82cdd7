#pragma once

#include "document/documentcommands.h"
#include "document/providersheet.h"
#include "notarization/providernames.h"
#include "support/steptest.h"

/// What heads a message about a reply.
inline const QString problem = QStringLiteral("Problem With Apple Team Details");

inline QByteArray list(const QByteArray &entries)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + entries
        + "</dict></plist>\n";
}

inline QByteArray providers(const QByteArray &array)
{
    return list("<key>providers</key><array>" + array + "</array>");
}

inline QByteArray team(const QByteArray &shortName, const QByteArray &name, const QByteArray &identifier)
{
    return "<dict><key>ProviderName</key><string>" + name + "</string><key>ProviderShortname</key><string>"
        + shortName + "</string><key>WWDRTeamID</key><string>" + identifier + "</string></dict>";
}

inline const QByteArray oneTeam = providers(team("Zebra", "Zebra Corp", "Z1"));
inline const QByteArray twoTeams =
    providers(team("Zebra", "Zebra Corp", "Z1") + team("Ant", "Ant &amp; Co %1", "A1"));

/// What a run of the notary tool brings.
inline SLWTaskResponsePtr response(qint64 status, const QByteArray &output, const QByteArray &error = {})
{
    const auto made = SLWTaskResponse::responseWithPath(QStringLiteral("/usr/bin/xcrun"), {});
    made->status.set(status);
    made->setData(std::make_shared<OutputBuffer>(output), std::make_shared<OutputBuffer>(error));
    return made;
}
