#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>

#include <functional>

namespace platform {

/// The desktop's own panels for files, by its portal. Public document: "XDG Desktop Portal",
/// org.freedesktop.portal.FileChooser and org.freedesktop.portal.Request. A panel chooses a file or a folder,
/// never both, and hands over what was chosen, so that it is of no use where bundles count as files. Main
/// thread.
class FileChooserPortal : public QObject {
    Q_OBJECT

public:
    enum class Kind { openFile, openFolder, saveFile };

    struct Question {
        Kind kind = Kind::openFile;
        QString title = {};
        QString parent = {}; ///< the window that asks, in the portal's form, as "x11:1a2b"; may be empty
        QString folder = {}; ///< path where the panel begins
        QStringList extensions = {}; ///< of openFile, without the dot; empty: any file
        QString name = {}; ///< of saveFile, the one that is proposed
    };

    enum class Ending { chosen, cancelled, failed };
    struct Answer {
        Ending ending;
        QString path; ///< of what was chosen
    };

    explicit FileChooserPortal(QDBusConnection bus, QObject *parent = nullptr);

    /// Whether the desktop has said that it has such panels. Not before the event loop has run a while.
    bool isThere() const { return m_isThere; }

    /// Puts a panel up. The answer comes once, from the event loop, and not if `context` has gone by then.
    /// The number is for `cancel`.
    quint64 ask(const Question &question, const QObject &context, std::function<void(const Answer &)> then);
    /// Takes the panel away; no answer comes.
    void cancel(quint64 request);

private:
    void lookForIt();

    QDBusConnection m_bus;
    bool m_isThere = false;
    quint64 m_requests = 0;
};

} // namespace platform
