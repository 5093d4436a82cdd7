#include "ui/waitingbanner.h"

#include "document/applicationinterface.h"
#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "ui/icons.h"
#include "ui/named.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qsizetype mostNames = 3;

/// The item that the folder is named for.
QString nameOf(const QString &folder)
{
    return itempath::lastComponent(folder).section(u" - "_s, 0, -2);
}

QString listed(QStringList names)
{
    const QString last = names.takeLast();
    return names.isEmpty() ? last : QObject::tr("%1 and %2").arg(names.join(u", "_s), last);
}

} // namespace

QString waitingSentence(const QStringList &folders)
{
    if (folders.isEmpty())
        return {};
    QStringList names;
    for (const QString &folder : folders.first(std::min(mostNames, folders.size())))
        names.append(nameOf(folder));
    if (folders.size() > mostNames)
        names.append(QObject::tr("%1 more").arg(folders.size() - mostNames));
    return folders.size() == 1 ? QObject::tr("%1 still waits for its verdict.").arg(names.first())
                               : QObject::tr("%1 still wait for their verdict.").arg(listed(names));
}

WaitingBanner::WaitingBanner(MainWinController &document, QWidget *parent)
    : BannerFrame(theme::Meaning::underway, parent)
    , m_document(document)
    , m_text(new QLabel(this))
{
    named(this, u"waitingBanner"_s, tr("Waiting"));
    m_text->setObjectName(u"waitingText"_s);
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    auto *const row = new QHBoxLayout(this);
    spaceOut();
    row->addWidget(m_text, 1);
    addButton(*row, u"waitingGoOn"_s, tr("Go On Waiting"), &WaitingBanner::goOn)
        .setIcon(icons::of(icons::Command::goOnWaiting));
    addButton(*row, u"waitingDismiss"_s, tr("Not Now"), &WaitingBanner::dismiss)
        .setIcon(icons::of(icons::Command::close));
    connect(&document.appDelegate().unattendedWaits, &Observable::changed, this, &WaitingBanner::follow);
    connect(&document.stepList, &Observable::changed, this, &WaitingBanner::follow);
    follow();
}

QPushButton &WaitingBanner::addButton(QBoxLayout &row, const QString &name, const QString &title,
                                      void (WaitingBanner::*press)())
{
    auto *const button = named(new QPushButton(title, this), name, title);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, press);
    row.addWidget(button);
    return *button;
}

void WaitingBanner::follow()
{
    const QStringList folders = m_document.appDelegate().unattendedWaits();
    const QString sentence = waitingSentence(folders);
    m_text->setText(sentence);
    m_text->setToolTip(folders.join(u'\n'));
    setAccessibleDescription(sentence);
    setVisible(!folders.isEmpty() && m_document.stepList.rows().isEmpty());
}

void WaitingBanner::goOn()
{
    m_document.appDelegate().goOnWaiting();
}

void WaitingBanner::dismiss()
{
    m_document.appDelegate().unattendedWaits.set({});
}

} // namespace sealwright
