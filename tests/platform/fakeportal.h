#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QVariantMap>

/// What a desktop's portal puts on the bus for panels; a test answers in the person's place.
class FakePortal : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.FileChooser")
    Q_PROPERTY(uint version READ version CONSTANT)

public:
    struct Asked {
        QString method;
        QString parent;
        QString title;
        QVariantMap options;
    };

    uint version() const { return 3; }

    /// Answers the latest question: 0 is a choice, 1 a cancel.
    void answer(QDBusConnection &bus, uint code, const QStringList &uris) const
    {
        QDBusMessage response = QDBusMessage::createSignal(
            handle, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
        response << code << QVariantMap{{QStringLiteral("uris"), uris}};
        bus.send(response);
    }

    QList<Asked> asked;
    QString handle; ///< of the latest question
    bool usesOtherHandles = false;
    bool refuses = false;

public Q_SLOTS:
    QDBusObjectPath OpenFile(const QString &parent, const QString &title, const QVariantMap &options)
    {
        return take({QStringLiteral("OpenFile"), parent, title, options});
    }
    QDBusObjectPath SaveFile(const QString &parent, const QString &title, const QVariantMap &options)
    {
        return take({QStringLiteral("SaveFile"), parent, title, options});
    }

private:
    QDBusObjectPath take(const Asked &question)
    {
        asked.append(question);
        if (refuses)
            sendErrorReply(QStringLiteral("org.freedesktop.portal.Error.Failed"), QStringLiteral("no"));
        const QString sender = message().service().remove(u':').replace(u'.', u'_');
        const QString token = question.options.value(QStringLiteral("handle_token")).toString();
        handle = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
                     .arg(sender, usesOtherHandles ? QStringLiteral("another") : token);
        return QDBusObjectPath(handle);
    }
};
