#include "ui/historypane.h"

#include "document/documentcommands.h"
#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "platform/workspace.h"
#include "run/submittednames.h"
#include "ui/emptyhint.h"
#include "ui/historymodel.h"
#include "ui/named.h"
#include "ui/submitteditems.h"
#include "ui/twopartrow.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSortFilterProxyModel>
#include <QTableView>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qreal rowHeight = 1.6; // of the text's
constexpr int rowsMeasured = 100; // for the widths of the columns

/// The address of the log in what the service has on record; invalid if there is none.
QUrl addressOfLog(const QString &record)
{
    static const QRegularExpression line(u"LogFileURL: *(https?://\\S+)"_s);
    const QRegularExpressionMatch found = line.match(record);
    return found.hasMatch() ? QUrl(found.captured(1), QUrl::StrictMode) : QUrl();
}

} // namespace

HistoryPane::HistoryPane(MainWinController &document, QWidget *parent)
    : QWidget(parent)
    , m_document(document)
    , m_history(new HistoryModel(this))
    , m_shown(new SortedHistory(*m_history, this))
    , m_search(named(new QLineEdit(this), u"historySearch"_s, tr("Search the history")))
    , m_table(named(new QTableView(this), u"historyTable"_s, tr("History")))
{
    m_search->setPlaceholderText(tr("Search"));
    m_search->setClearButtonEnabled(true);
    setUpTable();
    auto *const rows = new QVBoxLayout(this);
    rows->addWidget(m_search);
    rows->addWidget(m_table, 1);
    rows->addWidget(makeButtons());
    connect(m_search, &QLineEdit::textChanged, m_shown, &QSortFilterProxyModel::setFilterFixedString);
    connect(m_table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &HistoryPane::offerWhatCanBeDone);
    connect(m_table, &QTableView::activated, this, &HistoryPane::showReport);
    connect(&document.progressIndicator, &Control::changed, this, &HistoryPane::offerWhatCanBeDone);
    connect(&document.statusTextView, &LogText::appended, this, &HistoryPane::heedLog);
    new EmptyHint(*m_table,
                  tr("The submissions of the account stand here once “Fetch History” has asked for them."));
    offerWhatCanBeDone();
}

void HistoryPane::setUpTable()
{
    m_table->setModel(m_shown);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setSortingEnabled(true);
    m_table->sortByColumn(HistoryModel::date, Qt::DescendingOrder);
    m_table->setTabKeyNavigation(false);
    m_table->setWordWrap(false);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(qRound(fontMetrics().height() * rowHeight));
    m_table->horizontalHeader()->setSectionResizeMode(HistoryModel::identifier, QHeaderView::Stretch);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setResizeContentsPrecision(rowsMeasured);
    m_table->setShowGrid(false);
}

QWidget *HistoryPane::makeButtons()
{
    auto *const place = new TwoPartRow(this);
    m_report = makeButton(u"historyReport"_s, tr("Report"), tr("Prints what the service has on record"),
                          &HistoryPane::showReport);
    m_log = makeButton(u"historyLog"_s, tr("Log"), tr("Opens the service's log in the browser"),
                       &HistoryPane::openLog);
    m_copy = makeButton(u"historyCopyIdentifier"_s, tr("Copy Identifier"), {}, &HistoryPane::copyIdentifier);
    m_staple =
        makeButton(u"historyStaple"_s, tr("Staple"),
                   tr("Staples the item, which lies in a folder of this document"), &HistoryPane::staple);
    place->first().addWidget(m_report);
    place->first().addWidget(m_log);
    place->second().addWidget(m_copy);
    place->second().addWidget(m_staple);
    return place;
}

QPushButton *HistoryPane::makeButton(const QString &name, const QString &title, const QString &toolTip,
                                     void (HistoryPane::*press)())
{
    auto *const button = named(new QPushButton(title, this), name, title);
    button->setToolTip(toolTip);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, press);
    return button;
}

void HistoryPane::heedLog(const LogText::Run &run)
{
    auto entries = run.style == LogStyle::plain ? historyEntries(run.text) : QList<HistoryEntry>();
    nameItems(entries);
    m_history->take(entries);
    openLogOnceToldOf(run.text);
    if (entries.isEmpty())
        return;
    m_table->resizeColumnsToContents();
    Q_EMIT told();
}

/// The service does not say what was submitted.
void HistoryPane::nameItems(QList<HistoryEntry> &entries) const
{
    if (entries.isEmpty())
        return;
    const QHash<QString, QString> names = submittednames::known(m_document.host());
    for (HistoryEntry &entry : entries)
        entry.item = names.value(entry.identifier);
}

QString HistoryPane::selectedIdentifier() const
{
    const QModelIndexList rows = m_table->selectionModel()->selectedRows();
    return rows.isEmpty() ? QString() : m_history->entry(m_shown->mapToSource(rows.first()).row()).identifier;
}

/// Where this document's items lie.
QString HistoryPane::selectedItem() const
{
    QStringList folders;
    for (const QUrl &url : {m_document.originalAppletURL(), m_document.appletURL()}) {
        const QString path = itempath::fromUrl(url);
        if (path.isEmpty())
            continue;
        folders.append(itempath::folder(path));
        folders.append(itempath::folder(folders.last()));
    }
    return itemSubmittedAs(m_document.host().files, selectedIdentifier(), folders);
}

void HistoryPane::offerWhatCanBeDone()
{
    const bool isChosen = !selectedIdentifier().isEmpty();
    const bool isIdle = !m_document.progressIndicator.isAnimating();
    m_report->setEnabled(isChosen && isIdle);
    m_log->setEnabled(isChosen && isIdle);
    m_copy->setEnabled(isChosen);
    m_staple->setEnabled(isChosen && isIdle && !selectedItem().isEmpty());
}

void HistoryPane::showReport()
{
    if (m_report->isEnabled())
        m_document.commands().requestInfo.infoForRequestUUID(selectedIdentifier());
}

void HistoryPane::openLog()
{
    m_wantedLog = selectedIdentifier();
    showReport();
}

void HistoryPane::openLogOnceToldOf(const QString &record)
{
    const bool isWanted = !m_wantedLog.isEmpty() && record.contains(m_wantedLog);
    const QUrl address = isWanted ? addressOfLog(record) : QUrl();
    if (!address.isValid())
        return;
    m_wantedLog.clear();
    m_document.host().workspace.openUrl(address);
}

void HistoryPane::copyIdentifier()
{
    QGuiApplication::clipboard()->setText(selectedIdentifier());
}

void HistoryPane::staple()
{
    if (const QString item = selectedItem(); !item.isEmpty())
        m_document.commands().stapleOnly.stapleOnly(itempath::toUrl(item));
}

} // namespace sealwright
