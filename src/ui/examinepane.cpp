#include "ui/examinepane.h"

#include "app/appdelegate.h"
#include "document/mainwincontroller.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/mainqueue.h"
#include "platform/window.h"
#include "platform/workerqueue.h"
#include "platform/workspace.h"
#include "scripting/examining.h"
#include "ui/differenceentries.h"
#include "ui/itemlook.h"
#include "ui/named.h"
#include "ui/runsign.h"
#include "ui/spacing.h"

#include <QAction>
#include <QBoxLayout>
#include <QHash>
#include <QHeaderView>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTreeWidget>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int pathRole = Qt::UserRole; ///< of an entry, from the item

QString textOf(const QJsonObject &object, QLatin1StringView key)
{
    return object.value(key).toString();
}

QString joined(const QJsonArray &names)
{
    QStringList texts;
    for (const auto &name : names)
        texts.append(name.toString());
    return texts.join(u", "_s);
}

QTreeWidgetItem *entryFor(const QString &path, const QString &shown, const QString &detail)
{
    auto *const entry = new QTreeWidgetItem({shown, detail});
    entry->setData(0, pathRole, path);
    entry->setToolTip(0, path);
    entry->setToolTip(1, detail);
    return entry;
}

/// `item` is the name that the item itself is shown by.
QTreeWidgetItem *findingEntry(const QJsonObject &finding, const QString &item)
{
    const QString architecture = textOf(finding, "architecture"_L1);
    const QString message = textOf(finding, "message"_L1);
    const QString where = textOf(finding, "path"_L1);
    const QString shown = where == "."_L1 ? item : where;
    auto *const entry =
        entryFor(where, architecture.isEmpty() ? shown : u"%1 (%2)"_s.arg(shown, architecture),
                 u"%1: %2"_s.arg(textOf(finding, "severity"_L1), message));
    entry->setToolTip(1, message + u'\n' + textOf(finding, "advice"_L1));
    auto *const advice = entryFor(where, textOf(finding, "rule"_L1), textOf(finding, "advice"_L1));
    entry->addChild(advice);
    return entry;
}

QString stateOf(const QJsonObject &signature)
{
    const QString state = textOf(signature, "state"_L1);
    return state == "none"_L1 ? QObject::tr("unsigned") : state;
}

QString detailOf(const QJsonObject &code)
{
    const QJsonValue order = code.value("order"_L1);
    const QString place = order.isDouble() ? QObject::tr("signed as number %1").arg(order.toInt())
                                           : QObject::tr("not signed: %1").arg(textOf(code, "reason"_L1));
    const QStringList parts{textOf(code, "kind"_L1), place, stateOf(code.value("signature"_L1).toObject()),
                            joined(code.value("architectures"_L1).toArray())};
    QStringList told;
    std::copy_if(parts.cbegin(), parts.cend(), std::back_inserter(told),
                 [](const QString &part) { return !part.isEmpty(); });
    return told.join(u" · "_s);
}

bool isFolded(const QString &kind)
{
    return kind == "app"_L1 || kind == "bundle"_L1 || kind == "framework"_L1 || kind == "archive"_L1;
}

/// The innermost bundle that holds the path; null if there is none but the item itself. Entries come in the
/// order of their paths.
QTreeWidgetItem *bundleAbove(const QString &path, const QHash<QString, QTreeWidgetItem *> &bundles)
{
    for (auto end = path.lastIndexOf(u'/'); end > 0; end = path.lastIndexOf(u'/', end - 1)) {
        if (QTreeWidgetItem *const bundle = bundles.value(path.first(end)))
            return bundle;
    }
    return nullptr;
}

/// Of a path the beginning and the end matter, of a text the beginning.
class ShortenedTexts : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->textElideMode = index.column() == 0 ? Qt::ElideMiddle : Qt::ElideRight;
    }
};

/// The name of the older one, with its folder's where the two would have the same name.
QString nameBeside(const QString &old, const QString &item)
{
    const QString name = itempath::lastComponent(old);
    return name == itempath::lastComponent(item)
        ? itempath::lastComponent(itempath::folder(old)) + u'/' + name
        : name;
}

/// Whether the entry or one below it has the text; those that have it not are hidden.
bool showMatches(QTreeWidgetItem &entry, const QString &text)
{
    bool matches = text.isEmpty() || entry.text(0).contains(text, Qt::CaseInsensitive)
        || entry.text(1).contains(text, Qt::CaseInsensitive);
    for (int i = 0; i < entry.childCount(); ++i)
        matches = showMatches(*entry.child(i), text) || matches;
    entry.setHidden(!matches);
    return matches;
}

} // namespace

ExaminePane::ExaminePane(MainWinController &document, const ItemLook &look, QWidget *parent)
    : QWidget(parent)
    , m_document(document)
    , m_look(look)
    , m_summary(named(new QLabel(this), u"examineSummary"_s, tr("Examination")))
    , m_search(named(new QLineEdit(this), u"examineSearch"_s, tr("Search the examination")))
    , m_compare(named(new QPushButton(tr("Compare…"), this), u"examineCompare"_s, tr("Compare…")))
    , m_tree(named(new QTreeWidget(this), u"examineTree"_s, tr("Findings and code")))
    , m_detail(named(new QLabel(this), u"examineDetail"_s, tr("What is found")))
{
    m_summary->setTextFormat(Qt::PlainText);
    m_summary->setWordWrap(true);
    m_search->setPlaceholderText(tr("Search"));
    m_search->setClearButtonEnabled(true);
    m_tree->setColumnCount(2);
    m_tree->setHeaderLabels({tr("Item"), tr("What is found")});
    m_tree->setUniformRowHeights(true);
    m_tree->header()->setSectionResizeMode(QHeaderView::Stretch);
    m_tree->setItemDelegate(new ShortenedTexts(m_tree));
    m_detail->setTextFormat(Qt::PlainText);
    m_detail->setWordWrap(true);
    m_detail->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *const rows = new QVBoxLayout(this);
    rows->addWidget(m_summary);
    auto *const head = new QHBoxLayout;
    head->setSpacing(spacing::between);
    head->addWidget(m_search, 1);
    head->addWidget(m_compare);
    rows->addLayout(head);
    rows->addWidget(m_tree, 1);
    rows->addWidget(m_detail);
    connect(m_tree, &QTreeWidget::currentItemChanged, this, &ExaminePane::showDetail);
    showDetail(nullptr);
    connect(m_search, &QLineEdit::textChanged, this, &ExaminePane::filter);
    connect(m_compare, &QPushButton::clicked, this, &ExaminePane::askForOlder);
    connect(m_tree, &QTreeWidget::itemClicked, this, &ExaminePane::reveal);
    auto *const show = new QAction(tr("Show in Folder"), m_tree);
    show->setShortcuts({Qt::Key_Return, Qt::Key_Enter});
    show->setShortcutContext(Qt::WidgetShortcut);
    connect(show, &QAction::triggered, this, [this] {
        if (QTreeWidgetItem *const entry = m_tree->currentItem())
            reveal(entry);
    });
    m_tree->addAction(show);
    m_tree->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_compare->setEnabled(false);
    connect(&m_look, &ItemLook::begun, this, &ExaminePane::expect);
    connect(&m_look, &ItemLook::ended, this, &ExaminePane::take);
    setExamination({});
}

void ExaminePane::expect()
{
    m_item = m_look.item();
    m_summary->setText(tr("Looking at the item…"));
}

void ExaminePane::take(const QJsonObject &examination, const QString &error)
{
    setExamination(examination);
    if (!error.isEmpty())
        m_summary->setText(error);
}

void ExaminePane::setExamination(const QJsonObject &examination)
{
    m_tree->clear();
    showDetail(nullptr);
    m_compare->setEnabled(!examination.isEmpty());
    if (examination.isEmpty())
        return m_summary->setText(tr("Choose or drop an item to see what would be refused."));
    m_item = textOf(examination, "item"_L1);
    addFindings(examination);
    addCode(examination);
    m_summary->setText(examination.value("refused"_L1).toBool()
                           ? tr("The item would be refused.")
                           : tr("Nothing was found that would be refused."));
    if (!m_search->text().isEmpty())
        filter(m_search->text());
}

void ExaminePane::askForOlder()
{
    m_document.window().beginOpenPanel(
        {.message = tr("Choose the folder of an earlier run, or an item"),
         .allowedFileTypes = {u"app"_s, u"plugin"_s, u"fmplugin"_s, u"pkg"_s, u"dmg"_s},
         .canChooseFiles = true,
         .canChooseDirectories = true,
         .shouldEnable = {}},
        [pane = QPointer(this)](const QUrl &url) {
            if (pane && !url.isEmpty())
                pane->compareWith(itempath::fromUrl(url));
        });
}

void ExaminePane::compareWith(const QString &old)
{
    const auto &application = m_document.appDelegate();
    m_summary->setText(tr("Comparing…"));
    application.host().workers.post([pane = QPointer(this), &application, old, item = m_item] {
        const auto look = examining::run(application, {u"--compare"_s, u"--"_s, old, item});
        const QJsonObject answer = QJsonDocument::fromJson(look.valueOr({})).object();
        application.host().mainQueue.post([pane, old, item, answer, error = look.error()] {
            if (pane && pane->m_item == item) // another item has other differences
                pane->takeComparison(old, answer, error);
        });
    });
}

void ExaminePane::takeComparison(const QString &old, const QJsonObject &answer, const QString &error)
{
    if (!error.isEmpty())
        return m_summary->setText(error);
    setDifferences(nameBeside(old, m_item), answer.value("differences"_L1).toArray());
}

void ExaminePane::setDifferences(const QString &old, const QJsonArray &differences)
{
    showDifferences(*m_tree, {old, itempath::lastComponent(m_item)}, differences);
    m_summary->setText(differences.isEmpty() ? tr("Nothing has changed since %1.").arg(old)
                                             : tr("The changes since %1 are listed first.").arg(old));
    m_tree->scrollToTop();
    filter(m_search->text());
}

void ExaminePane::addFindings(const QJsonObject &examination)
{
    const QJsonArray findings = examination.value("findings"_L1).toArray();
    auto *const group = new QTreeWidgetItem(
        {tr("Findings"), findings.isEmpty() ? tr("none") : QString::number(findings.size())});
    // What would be refused comes before what is only worth a thought.
    for (const QString &severity : {u"error"_s, u"warning"_s}) {
        for (const auto &finding : findings) {
            if (textOf(finding.toObject(), "severity"_L1) != severity)
                continue;
            auto *const entry = findingEntry(finding.toObject(), itempath::lastComponent(m_item));
            entry->setIcon(1, runsign::icon(runsign::stateOfFinding(severity), *this));
            group->addChild(entry);
        }
    }
    m_tree->addTopLevelItem(group);
    group->setExpanded(true);
}

void ExaminePane::addCode(const QJsonObject &examination)
{
    QHash<QString, QTreeWidgetItem *> bundles; // by their paths
    QList<QTreeWidgetItem *> outermost;
    for (const auto &value : examination.value("code"_L1).toArray()) {
        const QJsonObject code = value.toObject();
        const QString path = textOf(code, "path"_L1);
        const QString shown = path == "."_L1 ? itempath::lastComponent(m_item) : path;
        auto *const entry = entryFor(path, shown, detailOf(code));
        if (QTreeWidgetItem *const bundle = bundleAbove(path, bundles)) {
            entry->setText(0, path.mid(bundle->data(0, pathRole).toString().size() + 1));
            bundle->addChild(entry);
        } else {
            outermost.append(entry);
        }
        if (isFolded(textOf(code, "kind"_L1)))
            bundles.insert(path, entry);
    }
    m_tree->addTopLevelItems(outermost);
}

void ExaminePane::filter(const QString &text)
{
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i)
        showMatches(*m_tree->topLevelItem(i), text);
}

/// The whole of what an entry tells, for which a column may have no room.
void ExaminePane::showDetail(const QTreeWidgetItem *entry)
{
    const QStringList told{entry ? entry->toolTip(0) : QString(), entry ? entry->toolTip(1) : QString()};
    const QString text = told.join(u'\n').trimmed();
    m_detail->setText(text);
    m_detail->setVisible(!text.isEmpty());
}

/// What lies in an archive is shown by its archive.
void ExaminePane::reveal(QTreeWidgetItem *item)
{
    const QString path = item->data(0, pathRole).toString();
    if (path.isNull())
        return;
    QString place = path == "."_L1 ? m_item : m_item + u'/' + path;
    const auto &files = m_document.host().files;
    while (place.size() > m_item.size() && !files.isReachable(place))
        place = itempath::folder(place);
    m_document.host().workspace.revealItem(place);
}

} // namespace sealwright
