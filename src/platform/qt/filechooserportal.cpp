#include "platform/qt/filechooserportal.h"

#include "platform/itempath.h"
#include "platform/qt/portalrequest.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QFile>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

const QString service = u"org.freedesktop.portal.Desktop"_s;
const QString path = u"/org/freedesktop/portal/desktop"_s;
const QString interface = u"org.freedesktop.portal.FileChooser"_s;

/// "(us)": 0 for a pattern of names.
struct Pattern {
    uint kind = 0;
    QString glob;
};

/// "(sa(us))"
struct Filter {
    QString name;
    QList<Pattern> patterns;
};

QDBusArgument &operator<<(QDBusArgument &argument, const Pattern &pattern)
{
    argument.beginStructure();
    argument << pattern.kind << pattern.glob;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Pattern &pattern)
{
    argument.beginStructure();
    argument >> pattern.kind >> pattern.glob;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const Filter &filter)
{
    argument.beginStructure();
    argument << filter.name << filter.patterns;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Filter &filter)
{
    argument.beginStructure();
    argument >> filter.name >> filter.patterns;
    argument.endStructure();
    return argument;
}

void registerTypes()
{
    qDBusRegisterMetaType<Pattern>();
    qDBusRegisterMetaType<QList<Pattern>>();
    qDBusRegisterMetaType<Filter>();
    qDBusRegisterMetaType<QList<Filter>>();
}

/// One that takes the extensions however they are written.
Filter filterOf(const QStringList &extensions)
{
    Filter filter;
    QStringList globs;
    for (const QString &extension : extensions) {
        globs.append(u"*."_s + extension);
        QString eachCase;
        for (const QChar letter : extension)
            eachCase += u"[%1%2]"_s.arg(letter.toLower(), letter.toUpper());
        filter.patterns.append({0, u"*."_s + eachCase});
    }
    filter.name = globs.join(u' ');
    return filter;
}

/// Of a request, by its number: what the portal, and its own object, are told it by.
QString tokenOf(quint64 request)
{
    return u"sealwright%1"_s.arg(request);
}

QVariantMap optionsOf(const FileChooserPortal::Question &question, const QString &token)
{
    using Kind = FileChooserPortal::Kind;
    QVariantMap options{{u"handle_token"_s, token},
                        {u"modal"_s, true},
                        {u"current_folder"_s, QFile::encodeName(question.folder) + '\0'}};
    if (question.kind == Kind::openFolder)
        options.insert(u"directory"_s, true);
    if (question.kind == Kind::saveFile)
        options.insert(u"current_name"_s, question.name);
    if (!question.extensions.isEmpty())
        options.insert(u"filters"_s, QVariant::fromValue(QList{filterOf(question.extensions)}));
    return options;
}

} // namespace

FileChooserPortal::FileChooserPortal(QDBusConnection bus, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
{
    registerTypes();
    // A portal that waits for something else of the session may come long after it has been asked for.
    auto *const watcher =
        new QDBusServiceWatcher(service, m_bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, &FileChooserPortal::lookForIt);
    lookForIt();
}

void FileChooserPortal::lookForIt()
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call << interface << u"version"_s;
    auto *const answer = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        m_isThere = m_isThere || reply.isValid();
    });
}

quint64 FileChooserPortal::ask(const Question &question, const QObject &context,
                               std::function<void(const Answer &)> then)
{
    const QString token = tokenOf(++m_requests);
    const QString method = question.kind == Kind::saveFile ? u"SaveFile"_s : u"OpenFile"_s;
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, method);
    call << question.parent << question.title << optionsOf(question, token);
    auto *const request = new PortalRequest(m_bus, token, this);
    request->setObjectName(token);
    connect(request, &PortalRequest::ended, &context,
            [then = std::move(then)](uint code, const QVariantMap &results) {
                const QUrl chosen(results.value(u"uris"_s).toStringList().value(0));
                if (code == PortalRequest::success && chosen.isLocalFile())
                    then({Ending::chosen, itempath::fromUrl(chosen)});
                else
                    then({code == PortalRequest::failure ? Ending::failed : Ending::cancelled, {}});
            });
    request->begin(call);
    return m_requests;
}

void FileChooserPortal::cancel(quint64 request)
{
    if (auto *const open = findChild<PortalRequest *>(tokenOf(request)))
        open->close();
}

} // namespace platform
