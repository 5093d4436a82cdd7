#include "ui/preferenceswindow.h"

#include "app/preferencekeys.h"
#include "platform/preferences.h"
#include "ui/named.h"
#include "ui/preferencebindings.h"
#include "ui/settingrows.h"
#include "ui/theme.h"
#include "ui/toplevel.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QSpinBox>
#include <QStyle>

using namespace Qt::StringLiterals;

namespace {

constexpr int charactersAcross = 96;
constexpr int captionCharacters = 28;

/// What a folder of tools lacks without which the application does not start; empty if it will do.
QString problemOfToolRoot(const QString &folder)
{
    if (folder.isEmpty())
        return {};
    if (!QFileInfo(folder).isDir())
        return u"There is no such folder. Sealwright would find no tools at the next launch."_s;
    for (const auto tool : {"usr/bin/xcrun"_L1, "usr/bin/codesign"_L1}) {
        if (!QFileInfo(folder + u'/' + tool).isExecutable())
            return u"This folder has no %1. Sealwright would not work with it."_s.arg(tool);
    }
    return {};
}

/// One group of settings: what is set, and below it what that means.
class Section {
public:
    Section(QBoxLayout &sections, const QString &title)
        : m_group(new QGroupBox(title))
        , m_rows(new QVBoxLayout(m_group))
    {
        sections.addWidget(m_group);
    }

    void addCheckbox(platform::Preferences &preferences, const QString &key, const QString &label,
                     const QString &explanation)
    {
        auto *const box = named(new QCheckBox(label, m_group), key, settingrows::plainLabel(label));
        bindings::bind(*box, preferences, key);
        beginSetting();
        m_rows->addWidget(box);
        explain(*box, explanation);
    }

    /// `field` is the setting itself or holds it.
    void addField(QWidget *field, QWidget &setting, const QString &label, const QString &explanation)
    {
        auto *const row = new QHBoxLayout;
        QWidget *const caption = settingrows::makeCaption(m_group, label, setting);
        caption->setMinimumWidth(caption->fontMetrics().averageCharWidth() * captionCharacters);
        row->addWidget(caption);
        row->addWidget(field, field == &setting ? 0 : 1);
        if (field == &setting)
            row->addStretch(1);
        beginSetting();
        m_rows->addLayout(row);
        explain(setting, explanation);
    }

    QWidget *widget() const { return m_group; }

private:
    void beginSetting()
    {
        if (m_rows->count() > 0)
            m_rows->addSpacing(m_rows->spacing());
    }

    void explain(QWidget &setting, const QString &explanation)
    {
        auto *const text = new QLabel(explanation, m_group);
        text->setWordWrap(true);
        text->setForegroundRole(QPalette::PlaceholderText);
        const QStyle &style = *m_group->style();
        text->setIndent(style.pixelMetric(QStyle::PM_IndicatorWidth)
                        + style.pixelMetric(QStyle::PM_CheckBoxLabelSpacing));
        setting.setAccessibleDescription(explanation);
        m_rows->addWidget(text);
    }

    QGroupBox *const m_group;
    QVBoxLayout *const m_rows;
};

QSpinBox *makeSpinBox(QWidget *parent, const QString &key, int least, int most, const QString &unit)
{
    auto *const box = new QSpinBox(parent);
    box->setObjectName(key);
    box->setRange(least, most);
    box->setSuffix(unit);
    toplevel::leaveTheWheelToScrolling(*box);
    return box;
}

QDoubleSpinBox *makeSecondsBox(QWidget *parent, const QString &key, double least, double most, int decimals,
                               double step)
{
    auto *const box = new QDoubleSpinBox(parent);
    box->setObjectName(key);
    box->setDecimals(decimals);
    box->setRange(least, most);
    box->setSingleStep(step);
    box->setSuffix(u" seconds"_s);
    toplevel::leaveTheWheelToScrolling(*box);
    return box;
}

} // namespace

void PreferencesWindow::present(platform::Preferences &preferences)
{
    PreferencesWindow *window = nullptr;
    for (QWidget *const top : QApplication::topLevelWidgets()) {
        if (auto *const open = qobject_cast<PreferencesWindow *>(top))
            window = open;
    }
    if (!window) {
        window = new PreferencesWindow(preferences);
        window->setAttribute(Qt::WA_DeleteOnClose);
    }
    toplevel::bringToFront(*window);
    window->activateWindow();
}

PreferencesWindow::PreferencesWindow(platform::Preferences &preferences)
    : m_preferences(preferences)
{
    setWindowTitle(u"Settings"_s);
    auto *const scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    auto *const contents = new QWidget(scroll);
    auto *const sections = new QVBoxLayout(contents);
    addSigning(*sections);
    addNotarization(*sections);
    addLog(*sections);
    addTools(*sections);
    sections->addStretch(1);
    scroll->setWidget(contents);
    auto *const whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(scroll);
    toplevel::keepFocusInSight(*scroll);
    toplevel::closeByKeys(*this);
    const int width = fontMetrics().averageCharWidth() * charactersAcross;
    resize(QSize(width, contents->heightForWidth(width)).boundedTo(screen()->availableSize()));
}

void PreferencesWindow::addSigning(QBoxLayout &sections)
{
    Section section(sections, u"Signing"_s);
    section.addCheckbox(m_preferences, key::prefCodesignForce, u"&Replace signatures that are there"_s,
                        u"Without it, codesign refuses code that is signed already."_s);
    section.addCheckbox(m_preferences, key::prefCodesignDeep, u"Have codesign sign &nested code too"_s,
                        u"Rarely needed: nested code is signed piece by piece in any case."_s);
    section.addCheckbox(
        m_preferences, key::prefDoPostCodesignCheck, u"&Verify after signing"_s,
        u"spctl assesses what was signed, if it is no disk image. Its answer is for the log file; the upload goes on."_s);
}

void PreferencesWindow::addNotarization(QBoxLayout &sections)
{
    Section section(sections, u"Notarization"_s);
    section.addCheckbox(m_preferences, key::preferXcodeAltool, u"Prefer the notary tool of &Xcode"_s,
                        u"Otherwise that of Transporter comes first. Takes effect at the next launch."_s);
    auto *const delay =
        makeSecondsBox(section.widget(), key::pollingDelay, shortestPollingDelay, longestPollingDelay, 1, 5);
    bindings::bind(*delay, m_preferences, key::pollingDelay);
    section.addField(delay, *delay, u"&Ask for the verdict every"_s,
                     u"From 20 to 300 seconds. A verdict usually takes several minutes."_s);
    constexpr int mostFailures = 1'000'000;
    auto *const limit = makeSpinBox(section.widget(), key::prefRetryLimitFor239Failure, lowestRetryLimit,
                                    mostFailures, u" failures"_s);
    bindings::bind(*limit, m_preferences, key::prefRetryLimitFor239Failure);
    section.addField(limit, *limit, u"&Give up after"_s,
                     u"Failures with code 239, which pass by themselves when the service is busy."_s);
    section.addCheckbox(
        m_preferences, key::resumeWaiting, u"Go on &waiting by itself at launch"_s,
        u"For what an earlier launch has left. Otherwise the window says what still waits, and asks."_s);
    section.addCheckbox(m_preferences, key::userInfoShowWhenActive,
                        u"Notif&y me while Sealwright is in front"_s,
                        u"Otherwise a verdict is announced only while you work in another program."_s);
}

void PreferencesWindow::addLog(QBoxLayout &sections)
{
    Section section(sections, u"Log"_s);
    section.addCheckbox(m_preferences, key::detailedLogToFile, u"Keep a detailed &log beside the item"_s,
                        u"“Submission Log.txt” has every line of the window and each tool's full report."_s);
    constexpr int leastSize = 6;
    constexpr int mostSize = 72;
    auto *const size = makeSpinBox(section.widget(), key::logFontSize, leastSize, mostSize, u" points"_s);
    bindings::bind(*size, m_preferences, key::logFontSize);
    section.addField(size, *size, u"Text &size in the window"_s, u"Counts from the next line on."_s);
}

void PreferencesWindow::addTools(QBoxLayout &sections)
{
    Section section(sections, u"Tools"_s);
    QWidget *const folder = makeToolRoot(section.widget());
    section.addField(
        folder, *folder->findChild<QLineEdit *>(key::toolRoot), u"&Folder of tools"_s,
        u"Holds tools at Apple's paths, such as usr/bin/codesign. Takes effect at the next launch."_s);
    constexpr double longestPause = 10;
    constexpr double step = 0.05;
    auto *const pause = makeSecondsBox(section.widget(), key::toolPause, 0, longestPause, 2, step);
    bindings::bind(*pause, m_preferences, key::toolPause);
    section.addField(pause, *pause, u"&Pause after each tool"_s,
                     u"0 is safe on this system. Counts for documents opened from now on."_s);
}

QWidget *PreferencesWindow::makeToolRoot(QWidget *parent)
{
    auto *const row = new QWidget(parent);
    auto *const columns = new QGridLayout(row);
    columns->setContentsMargins(0, 0, 0, 0);
    auto *const path = new QLineEdit(row);
    path->setObjectName(key::toolRoot);
    path->setPlaceholderText(u"The toolchain that came with Sealwright"_s);
    path->setClearButtonEnabled(true);
    bindings::bind(*path, m_preferences, key::toolRoot);
    auto *const choose =
        named(new QPushButton(u"&Choose…"_s, row), u"chooseToolRootButton"_s, u"Choose folder of tools"_s);
    connect(choose, &QPushButton::clicked, this, &PreferencesWindow::chooseToolRoot);
    columns->addWidget(path, 0, 0);
    columns->addWidget(choose, 0, 1);
    columns->addWidget(makeToolRootProblem(row, *path), 1, 0, 1, 2);
    return row;
}

/// Says so while the folder that is in the field would keep the application from starting.
QLabel *PreferencesWindow::makeToolRootProblem(QWidget *parent, QLineEdit &path)
{
    auto *const problem = new QLabel(parent);
    problem->setObjectName(u"toolRootProblem"_s);
    problem->setTextFormat(Qt::PlainText);
    problem->setWordWrap(true);
    QPalette palette;
    palette.setColor(QPalette::WindowText, theme::colourOf(theme::Meaning::bad, this->palette()));
    problem->setPalette(palette);
    const auto show = [problem, &path] {
        problem->setText(problemOfToolRoot(path.text()));
        problem->setVisible(!problem->text().isEmpty());
    };
    connect(&path, &QLineEdit::textChanged, problem, show);
    connect(&m_preferences.changes, &Observable::changed, problem,
            show); // which the field follows in silence
    show();
    return problem;
}

void PreferencesWindow::chooseToolRoot()
{
    const QString present = m_preferences.string(key::toolRoot);
    auto *const panel = new QFileDialog(this, u"Choose the folder of tools"_s,
                                        present.isEmpty() ? QDir::homePath() : present);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setOption(QFileDialog::DontUseNativeDialog);
    panel->setFileMode(QFileDialog::Directory);
    panel->setOption(QFileDialog::ShowDirsOnly);
    connect(panel, &QFileDialog::fileSelected, this,
            [this](const QString &folder) { m_preferences.setValue(key::toolRoot, folder); });
    connect(panel, &QDialog::finished, this, [this, panel] {
        toplevel::closeCompletions(*panel);
        activateWindow(); // not every desktop gives the focus back
    });
    panel->open();
}
