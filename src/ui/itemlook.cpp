#include "ui/itemlook.h"

#include "app/appdelegate.h"
#include "document/documentdefaults.h"
#include "document/mainwincontroller.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/mainqueue.h"
#include "platform/workerqueue.h"
#include "scripting/examining.h"

#include <QJsonDocument>
#include <QPointer>

namespace sealwright {

namespace {

constexpr int patience = 300; ///< milliseconds that further changes have to come

} // namespace

QString placeOfItem(const MainWinController &document)
{
    if (document.appletNameField.stringValue().isEmpty())
        return {};
    const platform::FileService &files = document.host().files;
    const QString chosen = itempath::fromUrl(document.originalAppletURL());
    const QString copy = itempath::fromUrl(document.appletURL());
    return !files.isReachable(chosen) && !copy.isEmpty() && files.isReachable(copy) ? copy : chosen;
}

ItemLook::ItemLook(MainWinController &document, QObject *parent)
    : QObject(parent)
    , m_document(document)
{
    m_soon.setSingleShot(true);
    m_soon.setInterval(patience);
    connect(&m_soon, &QTimer::timeout, this, &ItemLook::look);
    watchChoices();
    lookSoon();
}

bool ItemLook::isPossible() const
{
    return !m_document.appDelegate().examineProgram().isEmpty();
}

void ItemLook::watchChoices()
{
    connect(&m_document.appletNameField, &Control::changed, this, &ItemLook::lookSoon);
    connect(&m_document.extraEntitlementsURL, &Observable::changed, this, &ItemLook::lookSoon);
    connect(&m_document.useDiskImage, &Observable::changed, this, &ItemLook::lookSoon);
    connect(&m_document.progressIndicator, &Control::changed, this, &ItemLook::followItem);
    for (const CheckboxDefault &setting : checkboxDefaults())
        connect(&(m_document.*setting.checkbox), &Control::changed, this, &ItemLook::lookSoon);
}

/// A run that has ended well has moved its item.
void ItemLook::followItem()
{
    const bool isOver = !m_document.progressIndicator.isAnimating();
    if (isOver && !m_item.isEmpty() && m_item != placeOfItem(m_document))
        lookSoon();
}

void ItemLook::lookSoon()
{
    const bool hasItem = !m_document.appletNameField.stringValue().isEmpty();
    if (hasItem && isPossible())
        return m_soon.start();
    m_item.clear();
    Q_EMIT ended({}, {});
}

void ItemLook::look()
{
    m_item = placeOfItem(m_document);
    if (m_item.isEmpty())
        return;
    Q_EMIT begun();
    examine::Choices choices = examining::choicesOf(m_document);
    choices.countsSize = true;
    const auto &application = m_document.appDelegate();
    application.host().workers.post(
        [look = QPointer(this), &application, item = m_item, number = ++m_looks, choices] {
            const auto answer = examining::examineItem(application, item, choices);
            const QJsonObject examination = QJsonDocument::fromJson(answer.valueOr({})).object();
            application.host().mainQueue.post([look, number, examination, error = answer.error()] {
                if (look && look->m_looks == number) // a later look has more to say
                    Q_EMIT look->ended(examination, error);
            });
        });
}

} // namespace sealwright
