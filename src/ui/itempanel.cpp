#include "ui/itempanel.h"

#include "platform/itempath.h"
#include "ui/itemkinds.h"
#include "ui/shown.h"

#include <QApplication>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QLineEdit>
#include <QSortFilterProxyModel>
#include <QSplitter>
#include <QTreeView>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int charactersAcross = 140;
constexpr int linesDown = 34;
const QString nameField = u"fileNameEdit"_s; // of a file dialog of Qt

/// Leaves out the files of other types, and greys out what cannot be chosen all the same. A folder that
/// cannot be chosen can be entered, unless the panel's owner does not have it enabled.
class ChoosableItems : public QSortFilterProxyModel {
public:
    using Test = std::function<bool(const QString &path)>;

    ChoosableItems(Test hasType, Test isEnabled, QObject *parent)
        : QSortFilterProxyModel(parent)
        , m_hasType(std::move(hasType))
        , m_isEnabled(std::move(isEnabled))
    {
    }

    Qt::ItemFlags flags(const QModelIndex &index) const override
    {
        const QModelIndex file = mapToSource(index);
        const bool isRefused = file.isValid() && !m_isEnabled(files().filePath(file));
        return QSortFilterProxyModel::flags(index) & ~(isRefused ? Qt::ItemIsEnabled : Qt::NoItemFlags);
    }

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override
    {
        const QModelIndex index = files().index(row, 0, parent);
        return files().isDir(index) || m_hasType(files().filePath(index));
    }

private:
    const QFileSystemModel &files() const { return static_cast<const QFileSystemModel &>(*sourceModel()); }

    const Test m_hasType;
    const Test m_isEnabled;
};

} // namespace

ItemPanel::ItemPanel(const platform::OpenPanel &panel, const QString &folder, QWidget *parent)
    : QFileDialog(parent, shown(panel.message), folder)
    , m_panel(panel)
{
    setOption(DontUseNativeDialog);
    setOption(DontUseCustomDirectoryIcons);
    setFileMode(panel.canChooseFiles ? ExistingFile : Directory);
    setProxyModel(new ChoosableItems([this](const QString &path) { return isChoosableFile(path); },
                                     [this](const QString &path) { return isEnabled(path); }, this));
    resize(fontMetrics().averageCharWidth() * charactersAcross, fontMetrics().height() * linesDown);
    for (QWidget *const part :
         {findChild<QWidget *>(u"fileTypeLabel"_s), findChild<QWidget *>(u"fileTypeCombo"_s)}) {
        if (part)
            part->hide(); // there is one choice of what is on show
    }
    setIconProvider(&ItemKinds::shared());
    if (auto *const files = findChild<QTreeView *>(u"treeView"_s))
        files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    if (auto *const columns = findChild<QSplitter *>(u"splitter"_s))
        columns->setSizes({width() / 5, width() * 4 / 5});
    connect(this, &QFileDialog::currentChanged, this, &ItemPanel::showName);
    connect(this, &QFileDialog::directoryEntered, this, [this](const QString &entered) {
        if (isChoosableFile(entered) && mayChoose(entered))
            choose(entered);
    });
}

bool ItemPanel::mayChoose(const QString &path) const
{
    const QFileInfo item(path);
    return item.exists() && (isChoosableFile(path) || (item.isDir() && m_panel.canChooseDirectories))
        && isEnabled(path);
}

bool ItemPanel::isEnabled(const QString &path) const
{
    return !m_panel.shouldEnable || m_panel.shouldEnable(itempath::toUrl(path));
}

/// A bundle counts as the file that it is elsewhere; a folder that only has such a name does not.
bool ItemPanel::isChoosableFile(const QString &path) const
{
    static const QStringList bundles{u"app"_s, u"plugin"_s, u"fmplugin"_s};
    const QString extension = itempath::lowerExtension(path);
    return m_panel.canChooseFiles && m_panel.allowedFileTypes.contains(extension)
        && (!QFileInfo(path).isDir() || bundles.contains(extension));
}

/// Who types the path of a folder wants to look into it. The folder itself is chosen in the list.
bool ItemPanel::isWayToFolder(const QString &path) const
{
    const auto *const name = findChild<QLineEdit *>(nameField);
    return m_panel.canChooseFiles && QFileInfo(path).isDir() && !isChoosableFile(path) && name
        && name->text().contains(u'/');
}

void ItemPanel::choose(const QString &path)
{
    m_chosen = itempath::toUrl(path);
    // The item is chosen as it stands: a file dialog would look for it again, and open a bundle as a folder.
    QDialog::accept(); // NOLINT(bugprone-parent-virtual-call)
}

void ItemPanel::accept()
{
    const QStringList selected = selectedFiles();
    if (selected.size() == 1 && mayChoose(selected.first()) && !isWayToFolder(selected.first()))
        return choose(selected.first());
    if (selected.size() == 1 && QFileInfo(selected.first()).isDir())
        return QFileDialog::accept(); // which goes into the folder
    QApplication::beep();
}

void ItemPanel::showName(const QString &path)
{
    // The name of a folder is not put there by itself, and without a name there is nothing to open.
    if (auto *const name = findChild<QLineEdit *>(nameField); name && mayChoose(path))
        name->setText(itempath::lastComponent(path));
}

} // namespace sealwright
