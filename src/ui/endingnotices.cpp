#include "ui/endingnotices.h"

#include "app/appdelegate.h"
#include "app/preferencekeys.h"
#include "document/mainwincontroller.h"
#include "platform/applicationhost.h"
#include "platform/preferences.h"
#include "ui/outcomebanner.h"
#include "ui/widgetwindow.h"

#include <QCoreApplication>
#include <QPointer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qsizetype longestText = 200; // characters; the window has the rest

const RunOutcome &outcomeOf(const MainWinController &document)
{
    return dynamic_cast<WidgetWindow &>(document.window()).page().banner().outcome();
}

QString titleOf(const MainWinController &document, const RunOutcome &outcome)
{
    return QCoreApplication::translate("EndingNotices", "%1: %2")
        .arg(document.window().title(), outcome.title);
}

QString shortened(const QString &text)
{
    return text.size() > longestText ? text.left(longestText - 1) + u'…' : text;
}

} // namespace

EndingNotices::EndingNotices(AppDelegate &application)
    : m_application(application)
{
    connect(&application, &AppDelegate::documentAdded, this,
            [this](MainWinController *document) { follow(*document); });
    connect(&application, &AppDelegate::documentRemoved, this,
            [this](const MainWinController *document) { m_hasRun.remove(document); });
    for (const DocumentPtr &document : application.allControllers())
        follow(*document);
}

void EndingNotices::follow(MainWinController &document)
{
    connect(&document.stepList, &Observable::changed, this, [this, &document] {
        if (document.stepList.running())
            m_hasRun.insert(&document, true);
    });
    connect(&document.progressIndicator, &Control::changed, this, [this, &document] { heed(document); });
}

/// The sheet of an ending comes up in the same turn of the event loop, and the outcome has its words.
void EndingNotices::heed(MainWinController &document)
{
    if (document.progressIndicator.isAnimating() || !m_hasRun.take(&document))
        return;
    QMetaObject::invokeMethod(
        this,
        [this, ended = QPointer(&document)] {
            if (ended)
                announce(*ended);
        },
        Qt::QueuedConnection);
}

void EndingNotices::announce(MainWinController &document)
{
    const RunOutcome &outcome = outcomeOf(document);
    const bool isEnd = outcome.kind != RunOutcome::Kind::none && outcome.kind != RunOutcome::Kind::waiting;
    if (!isEnd || !m_application.host().preferences.boolean(key::notifiesOfEndings))
        return;
    m_application.host().userNotifications.deliver(
        {.title = titleOf(document, outcome),
         .informativeText = shortened(outcome.sentence),
         .userInfo = {{platform::showWhenActiveKey.toString(), false}},
         .wasClicked = [this, id = document.uniqueID, alive = QPointer(this)](const QString &token) {
             if (alive)
                 show(id, token);
         }});
}

/// The document may have been closed since.
void EndingNotices::show(const QString &document, const QString &token)
{
    const auto &all = m_application.allControllers();
    const auto found = std::find_if(all.cbegin(), all.cend(),
                                    [&document](const auto &open) { return open->uniqueID == document; });
    if (!token.isEmpty())
        m_application.host().application.setActivationToken(token);
    if (found == all.cend())
        return m_application.host().application.activate();
    (*found)->window().show();
}

} // namespace sealwright
