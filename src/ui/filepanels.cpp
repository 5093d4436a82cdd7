#include "ui/filepanels.h"

#include "ui/named.h"
#include "ui/toplevel.h"

#include <QApplication>
#include <QBoxLayout>
#include <QFileDialog>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

using platform::FileChooserPortal;

namespace filepanels {

namespace {

const QStringList bundles{u"app"_s, u"plugin"_s, u"fmplugin"_s};

/// Those of the first of the filter's choices.
QStringList extensionsIn(const QString &filter)
{
    static const QRegularExpression form(u"\\*\\.(\\w+)"_s);
    QStringList extensions;
    for (auto match = form.globalMatch(filter.section(u";;"_s, 0, 0)); match.hasNext();)
        extensions.append(match.next().captured(1));
    return extensions;
}

void chooseInOurs(QWidget &owner, const Choice &choice, std::function<void(const QString &)> chosen)
{
    auto *const panel = new QFileDialog(&owner, choice.title, choice.folder, choice.filter);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setFileMode(choice.filter.isEmpty() ? QFileDialog::Directory : QFileDialog::ExistingFile);
    panel->setOption(QFileDialog::ShowDirsOnly, choice.filter.isEmpty());
    QObject::connect(panel, &QFileDialog::fileSelected, &owner, std::move(chosen));
    QObject::connect(panel, &QDialog::finished, &owner, [&owner, panel] {
        toplevel::closeCompletions(*panel);
        owner.activateWindow(); // not every desktop gives the focus back
    });
    panel->open();
}

void chooseOnTheDesktop(FileChooserPortal &portal, QWidget &owner, const Choice &choice,
                        const std::function<void(const QString &)> &chosen)
{
    using Kind = FileChooserPortal::Kind;
    const FileChooserPortal::Question question{choice.filter.isEmpty() ? Kind::openFolder : Kind::openFile,
                                               choice.title,
                                               portalNameOf(owner),
                                               choice.folder,
                                               extensionsIn(choice.filter),
                                               {}};
    portal.ask(question, owner, [&owner, choice, chosen](const FileChooserPortal::Answer &answer) {
        if (answer.ending == FileChooserPortal::Ending::chosen)
            chosen(answer.path);
        else if (answer.ending == FileChooserPortal::Ending::failed)
            chooseInOurs(owner, choice, chosen);
    });
}

} // namespace

FileChooserPortal *desktopPanels()
{
    auto *const portal = qApp->findChild<FileChooserPortal *>(QString(), Qt::FindDirectChildrenOnly);
    return portal && portal->isThere() ? portal : nullptr;
}

bool suitsTheDesktop(const platform::OpenPanel &panel)
{
    const bool hasBundles = std::any_of(panel.allowedFileTypes.cbegin(), panel.allowedFileTypes.cend(),
                                        [](const QString &type) { return bundles.contains(type); });
    return panel.canChooseFiles && !panel.canChooseDirectories && !hasBundles;
}

QString portalNameOf(const QWidget &widget)
{
    // A window of Wayland has a name only once it has been exported, for which Qt has no public way.
    return QGuiApplication::platformName() == "xcb"_L1
        ? u"x11:"_s + QString::number(widget.window()->winId(), 16)
        : QString();
}

void choose(QWidget &owner, const Choice &choice, std::function<void(const QString &path)> chosen)
{
    if (FileChooserPortal *const portal = desktopPanels())
        chooseOnTheDesktop(*portal, owner, choice, chosen);
    else
        chooseInOurs(owner, choice, std::move(chosen));
}

DesktopPanel::DesktopPanel(FileChooserPortal &portal, const FileChooserPortal::Question &question,
                           QWidget *parent)
    : QDialog(parent)
    , m_portal(portal)
{
    setObjectName(u"desktopPanel"_s);
    setWindowTitle(question.title);
    auto *const text = new QLabel(tr("The desktop asks for the file in a window of its own."), this);
    text->setWordWrap(true);
    auto *const cancel = named(new QPushButton(tr("Cancel"), this), u"desktopPanelCancel"_s, tr("Cancel"));
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *const rows = new QVBoxLayout(this);
    rows->addWidget(text);
    rows->addWidget(cancel, 0, Qt::AlignRight);
    m_request = portal.ask(question, *this, [this](const FileChooserPortal::Answer &answer) {
        m_isAnswered = true;
        m_answer = answer;
        done(answer.ending == FileChooserPortal::Ending::chosen ? Accepted : Rejected);
    });
}

DesktopPanel::~DesktopPanel()
{
    if (!m_isAnswered)
        m_portal.cancel(m_request);
}

} // namespace filepanels

} // namespace sealwright
