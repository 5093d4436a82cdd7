#pragma once

#include <QHash>
#include <QObject>

namespace sealwright {

class AppDelegate;
class MainWinController;

/// Announces how a run has ended while no window of the application is active, where a person turned that on;
/// a click on the announcement leads to the document. It comes beside the one message that each notarized
/// submission has. Main thread.
class EndingNotices : public QObject {
    Q_OBJECT

public:
    explicit EndingNotices(AppDelegate &application);

private:
    void follow(MainWinController &document);
    void heed(MainWinController &document);
    void announce(MainWinController &document);
    void show(const QString &document, const QString &token);

    AppDelegate &m_application;
    QHash<const MainWinController *, bool> m_hasRun; ///< a step, since the last announcement
};

} // namespace sealwright
