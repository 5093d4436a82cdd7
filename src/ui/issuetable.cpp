#include "ui/issuetable.h"

#include "document/mainwincontroller.h"
#include "ui/named.h"

#include <QAction>
#include <QBoxLayout>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTableWidget>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

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
{
    m_table->setColumnCount(int(columns().size()));
    m_table->setHorizontalHeaderLabels(headings());
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->verticalHeader()->hide();
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setTabKeyNavigation(false);
    auto *const copy = new QAction(tr("Copy"), m_table);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    connect(copy, &QAction::triggered, this, &IssueTable::copySelection);
    m_table->addAction(copy);
    m_table->setContextMenuPolicy(Qt::ActionsContextMenu);
    auto *const rows = new QVBoxLayout(this);
    rows->addWidget(m_table);
    connect(&document.serviceIssues, &Observable::changed, this, &IssueTable::showIssues);
    showIssues();
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
            cell->setToolTip(text);
            m_table->setItem(row, column, cell);
        }
    }
    m_table->setSortingEnabled(true);
    m_table->resizeColumnsToContents();
}

void IssueTable::copySelection() const
{
    QStringList lines;
    for (const QModelIndex &row : m_table->selectionModel()->selectedRows()) {
        QStringList cells;
        for (int column = 0; column < m_table->columnCount(); ++column)
            cells.append(m_table->item(row.row(), column)->text());
        lines.append(cells.join(u'\t'));
    }
    QGuiApplication::clipboard()->setText(lines.join(u'\n'));
}

} // namespace sealwright
