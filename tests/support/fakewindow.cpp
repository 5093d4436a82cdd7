#include "support/fakewindow.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

int FakeApplication::runModal(const platform::Alert &alert)
{
    modalAlerts.append(alert);
    return answerModal ? answerModal() : platform::alertFirstButton;
}

QList<platform::Window *> FakeApplication::windowsFrontToBack() const
{
    return otherWindows ? otherWindows() : QList<platform::Window *>(onScreen.cbegin(), onScreen.cend());
}

platform::Window *FakeTabGroup::selectedWindow() const
{
    return m_selected;
}

void FakeTabGroup::setSelectedWindow(platform::Window &window)
{
    m_application.arrangements.append(u"select "_s + window.title());
    show(&dynamic_cast<FakeWindow &>(window));
}

void FakeTabGroup::removeWindow(platform::Window &window)
{
    m_application.arrangements.append(u"remove "_s + window.title());
    if (m_windows.size() < 2)
        return;
    auto &removed = dynamic_cast<FakeWindow &>(window);
    std::make_shared<FakeTabGroup>(m_application)->insertWindow(removed, 0);
    m_application.onScreen.prepend(&removed);
}

void FakeTabGroup::insertWindow(platform::Window &window, qsizetype atIndex)
{
    m_application.arrangements.append(u"insert %1 at %2"_s.arg(window.title()).arg(atIndex));
    const auto alive = shared_from_this();
    auto &inserted = dynamic_cast<FakeWindow &>(window);
    FakeWindow *const selected = m_selected;
    if (inserted.group)
        inserted.group->release(inserted);
    m_windows.insert(std::min(atIndex, m_windows.size()), &inserted);
    inserted.group = alive;
    if (!selected || selected == &inserted)
        show(&inserted);
}

void FakeTabGroup::release(FakeWindow &window)
{
    const qsizetype index = m_windows.indexOf(&window);
    m_windows.removeAt(index);
    if (m_windows.isEmpty())
        show(nullptr);
    else if (m_selected == &window)
        show(m_windows.at(std::min(index, m_windows.size() - 1)));
}

void FakeTabGroup::show(FakeWindow *window)
{
    FakeWindow *const previous = std::exchange(m_selected, window);
    const qsizetype position = m_application.onScreen.indexOf(previous);
    if (position < 0)
        return;
    if (window)
        m_application.onScreen.replace(position, window);
    else
        m_application.onScreen.removeAt(position);
}

FakeWindow::FakeWindow(FakeApplication &application)
    : m_application(application)
{
    std::make_shared<FakeTabGroup>(application)->insertWindow(*this, 0);
    application.arrangements.clear();
}

FakeWindow::~FakeWindow()
{
    group->release(*this);
}

void FakeWindow::show()
{
    m_application.tokenWhenShown = m_application.activationToken;
    m_application.activationsWhenShown = m_application.activations;
    modesWhenShown.append(tabbingModes.isEmpty() ? platform::TabbingMode::automatic : tabbingModes.last());
    auto &onScreen = m_application.onScreen;
    const bool isNew = group->windows().size() == 1 && !onScreen.contains(this);
    if (isNew && modesWhenShown.last() == platform::TabbingMode::preferred && !onScreen.isEmpty())
        onScreen.first()->group->insertWindow(*this, onScreen.first()->group->windows().size());
    group->setSelectedWindow(*this);
    onScreen.removeAll(this);
    onScreen.prepend(this);
    m_application.arrangements.clear();
}

QList<platform::Window *> FakeWindow::tabbedWindows() const
{
    return showsTabWhenAlone ? group->windows() : Window::tabbedWindows();
}

void FakeWindow::setFrame(const QRect &frame)
{
    place = frame;
}

void FakeWindow::orderAbove(qint64 windowNumber)
{
    m_application.arrangements.append(u"order %1 above %2"_s.arg(title()).arg(windowNumber));
    if (windowNumber != 0 || isClosed)
        return;
    m_application.onScreen.removeAll(this);
    m_application.onScreen.prepend(this);
}

bool FakeWindow::makeNothingFirstResponder()
{
    ++focusesTaken;
    return !refusesToGiveUpFocus;
}

void FakeWindow::performClose()
{
    if (m_delegate.shouldClose())
        close();
}

void FakeWindow::close()
{
    isClosed = true;
    sheet.reset();
    namedSheet.reset();
    panel.reset();
    std::make_shared<FakeTabGroup>(m_application)->insertWindow(*this, 0);
    m_delegate.willClose();
}

void FakeWindow::beginSheet(const platform::Alert &alert, std::function<void(int)> completion)
{
    if (isClosed)
        return;
    sheets.append(alert);
    sheet = Sheet{alert, std::move(completion)};
}

void FakeWindow::beginSheetNamed(const QString &interfaceName, std::function<void(int)> completion)
{
    if (!isClosed)
        namedSheet = NamedSheet{interfaceName, std::move(completion)};
}

void FakeWindow::endSheet(int returnCode)
{
    const auto ended = std::exchange(namedSheet, std::nullopt);
    if (ended)
        ended->completion(returnCode);
}

void FakeWindow::beginOpenPanel(const platform::OpenPanel &wanted,
                                std::function<void(const QUrl &)> completion)
{
    panel = Panel{wanted, std::move(completion)};
}

void FakeWindow::answerSheet(int answer)
{
    ASSERT_TRUE(sheet) << "no sheet is up";
    const auto completion = std::exchange(sheet, std::nullopt)->completion;
    completion(answer);
}

void FakeWindow::choose(const QUrl &url)
{
    ASSERT_TRUE(panel) << "no panel is up";
    const auto completion = std::exchange(panel, std::nullopt)->completion;
    completion(url);
}

std::unique_ptr<platform::Window> FakeWindowFactory::makeWindow(MainWinController &)
{
    return std::make_unique<FakeWindow>(m_application);
}

std::unique_ptr<platform::Panel> FakeWindowFactory::makeAboutPanel(AboutController &)
{
    return std::make_unique<FakePanel>(aboutPanel);
}
