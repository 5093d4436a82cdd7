#include "ui/issuetable.h"

#include "document/mainwincontroller.h"
#include "platform/workspace.h"
#include "ui/emptyhint.h"
#include "ui/named.h"
#include "ui/runsign.h"

#include <QAction>
#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPushButton>
#include <QTableWidget>
#include <QUrl>

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int messageColumn = 3;
constexpr qreal rowHeight = 1.6; // of the text's
constexpr int pathColumn = 1;
constexpr int fewestLetters = 20; // of a message beside the others, before it takes more lines
constexpr int mostOfPath = 30; // percent of the width
constexpr int mostWrapped = 100; // rows; more are measured while a person waits

struct Column {
    QString key;
    QString heading;
};

const QList<Column> &columns()
{
    static const QList<Column> all{{u"severity"_s, QObject::tr("Severity")},
                                   {u"path"_s, QObject::tr("Path")},
                                   {u"architecture"_s, QObject::tr("Architecture")},
                                   {u"message"_s, QObject::tr("Message")},
                                   {u"docUrl"_s, QObject::tr("Link")}};
    return all;
}

int linkColumn()
{
    return int(columns().size()) - 1;
}

bool isWebPage(const QUrl &url)
{
    return url.scheme() == "https"_L1 || url.scheme() == "http"_L1;
}

/// A link looks like one.
void dress(QTableWidgetItem &cell, const QPalette &palette)
{
    if (cell.column() != linkColumn() || !isWebPage(QUrl(cell.text())))
        return;
    QFont font = cell.font();
    font.setUnderline(true);
    cell.setFont(font);
    cell.setForeground(palette.link());
}

bool hasLinks(const QJsonArray &issues)
{
    return std::any_of(issues.cbegin(), issues.cend(), [](const auto &issue) {
        return !issue.toObject().value("docUrl"_L1).toString().isEmpty();
    });
}

QStringList headings()
{
    QStringList texts;
    for (const Column &column : columns())
        texts.append(column.heading);
    return texts;
}

} // namespace

IssueTable::IssueTable(MainWinController &document, QWidget *parent)
    : QWidget(parent)
    , m_document(document)
    , m_table(named(new QTableWidget(this), u"issueTable"_s, tr("What the service said")))
    , m_copy(named(new QPushButton(tr("Copy"), this), u"copyIssues"_s, tr("Copy")))
{
    m_table->setColumnCount(int(columns().size()));
    m_table->setHorizontalHeaderLabels(headings());
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->verticalHeader()->hide();
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setTabKeyNavigation(false);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->moveSection(messageColumn, 1); // what matters stands where it is seen
    m_table->setWordWrap(true);
    m_table->setTextElideMode(Qt::ElideMiddle);
    m_table->setShowGrid(false);
    m_table->verticalHeader()->setDefaultSectionSize(qRound(fontMetrics().height() * rowHeight));
    new EmptyHint(*m_table, tr("What the notary service finds fault with stands here."));
    m_table->horizontalHeader()->setSortIndicator(0, Qt::AscendingOrder); // errors before warnings
    addAction(tr("Copy"), {QKeySequence::Copy}, &IssueTable::copyRows);
    addAction(tr("Open Link"), {Qt::Key_Return, Qt::Key_Enter}, &IssueTable::openLinkOfRow);
    m_table->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_copy->setToolTip(tr("Copies the selected rows, or all of them"));
    auto *const rows = new QVBoxLayout(this);
    rows->addWidget(m_table, 1);
    rows->addWidget(m_copy, 0, Qt::AlignRight);
    connect(&document.serviceIssues, &Observable::changed, this, &IssueTable::showIssues);
    connect(m_table, &QTableWidget::itemClicked, this, &IssueTable::openLink);
    connect(m_copy, &QPushButton::clicked, this, &IssueTable::copyRows);
    connect(m_table->horizontalHeader(), &QHeaderView::sectionResized, this, [this] {
        if (m_isFitting)
            return;
        m_isChosen = QApplication::mouseButtons() != Qt::NoButton || m_isChosen;
        fitRows();
    });
    showIssues();
}

void IssueTable::addAction(const QString &text, const QList<QKeySequence> &keys, void (IssueTable::*method)())
{
    auto *const action = new QAction(text, m_table);
    action->setShortcuts(keys);
    action->setShortcutContext(Qt::WidgetShortcut);
    connect(action, &QAction::triggered, this, method);
    m_table->addAction(action);
}

/// A click elsewhere in the row opens nothing.
void IssueTable::openLink(const QTableWidgetItem *cell)
{
    if (cell->column() != linkColumn())
        return;
    const QUrl url(cell->text());
    if (isWebPage(url))
        m_document.host().workspace.openUrl(url);
}

void IssueTable::openLinkOfRow()
{
    if (m_table->currentRow() >= 0)
        openLink(m_table->item(m_table->currentRow(), linkColumn()));
}

void IssueTable::showIssues()
{
    const QJsonArray issues = QJsonDocument::fromJson(m_document.serviceIssues().toUtf8()).array();
    m_table->setSortingEnabled(false); // rows that move while they are filled would be mixed up
    m_table->setRowCount(int(issues.size()));
    for (int row = 0; row < m_table->rowCount(); ++row) {
        const QJsonObject issue = issues[row].toObject();
        for (int column = 0; column < m_table->columnCount(); ++column) {
            const QString text = issue.value(columns()[column].key).toString();
            auto *const cell = new QTableWidgetItem(text);
            if (column == 0)
                cell->setIcon(runsign::icon(runsign::stateOfFinding(text), *this));
            cell->setToolTip(text);
            m_table->setItem(row, column, cell);
            dress(*cell, palette());
        }
    }
    m_table->setSortingEnabled(true);
    m_table->setColumnHidden(linkColumn(), !hasLinks(issues));
    fitColumns();
    m_copy->setEnabled(m_table->rowCount() > 0);
}

/// All of a message can be read, in as many lines as that takes, and nothing is scrolled sideways for it.
void IssueTable::fitColumns()
{
    if (m_isChosen || m_table->rowCount() == 0)
        return;
    m_isFitting = true;
    m_table->resizeColumnsToContents();
    const int most = m_table->viewport()->width() * mostOfPath / 100;
    m_table->setColumnWidth(pathColumn, qMin(most, m_table->columnWidth(pathColumn)));
    int room = m_table->viewport()->width();
    for (int column = 0; column < m_table->columnCount(); ++column) {
        const bool isNeeded = column != linkColumn() && column != messageColumn;
        room -= isNeeded ? m_table->columnWidth(column) : 0;
    }
    const int least = fewestLetters * fontMetrics().averageCharWidth();
    m_table->setColumnWidth(messageColumn, qMin(m_table->columnWidth(messageColumn), qMax(least, room)));
    fitRows();
    m_isFitting = false;
}

void IssueTable::fitRows()
{
    if (m_table->rowCount() <= mostWrapped)
        m_table->resizeRowsToContents();
}

void IssueTable::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layout()->activate();
    fitColumns();
}

/// Those that are selected, or all; from top to bottom.
QList<int> IssueTable::rowsToCopy() const
{
    QList<int> rows;
    for (const QModelIndex &index : m_table->selectionModel()->selectedRows())
        rows.append(index.row());
    if (rows.isEmpty()) {
        rows.resize(m_table->rowCount());
        std::iota(rows.begin(), rows.end(), 0);
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

void IssueTable::copyRows()
{
    QStringList lines;
    for (const int row : rowsToCopy()) {
        QStringList cells;
        for (int column = 0; column < m_table->columnCount(); ++column)
            cells.append(m_table->item(row, column)->text());
        lines.append(cells.join(u'\t'));
    }
    QGuiApplication::clipboard()->setText(lines.join(u'\n'));
}

} // namespace sealwright
