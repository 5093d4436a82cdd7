// Fifty documents that wait for their verdict, in the real application.

#include "liveapplication.h"
#include "rows.h"

#include <QThread>

using namespace Qt::StringLiterals;

namespace {

constexpr int documents = 50;
constexpr int watched = 40; // seconds; each document asks twice

/// They wait for a verdict that never comes, and are ended with whoever holds them.
class Clients {
public:
    Clients() = default;
    Clients(Clients &&) = default;
    Clients &operator=(Clients &&) = delete;
    ~Clients()
    {
        for (const auto &client : m_clients)
            client->kill();
        for (const auto &client : m_clients)
            client->waitForFinished(-1);
    }

    void start(const QStringList &arguments)
    {
        m_clients.push_back(std::make_unique<QProcess>());
        m_clients.back()->start(QStringLiteral(SEALWRIGHT_CLIENT), arguments);
    }

private:
    std::vector<std::unique_ptr<QProcess>> m_clients;
};

/// Submits all items and comes back when all wait.
Clients submitAll(const LiveApplication &application)
{
    Clients clients;
    for (int document = 0; document < documents; ++document)
        clients.start({u"submit"_s, application.item(document)});
    LiveApplication::until(
        [] { return LiveApplication::outputOf({u"documents"_s}).count("\twaiting\t") == documents; });
    return clients;
}

} // namespace

QList<Figure> rows::waitingDocuments()
{
    LiveApplication application(documents);
    application.tools().answer(u"altool--notarization-info"_s,
                               {.output = FakeTools::infoReport(u"in progress"_s)});
    const double before = application.residentMebibytes();
    const Clients clients = submitAll(application);
    const double spent = application.processorSeconds();
    QThread::sleep(watched);
    const double share = (application.processorSeconds() - spent) / watched;
    const double each = (application.residentMebibytes() - before) / documents;
    return {{u"the share of a core that 50 waiting documents take"_s, share * 100, 1, u"%"_s},
            {u"    the memory of each of them"_s, each, 3, u"MiB"_s}};
}
