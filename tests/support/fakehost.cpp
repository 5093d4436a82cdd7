#include "support/fakehost.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using platform::Outcome;

void TestMainQueue::post(std::function<void()> block)
{
    ++m_pending;
    const std::scoped_lock lock(m_mutex);
    m_blocks.push_back(std::move(block));
    QMetaObject::invokeMethod(this, "runNext", Qt::QueuedConnection);
}

void TestMainQueue::runNext()
{
    std::unique_lock lock(m_mutex);
    auto block = std::move(m_blocks.front());
    m_blocks.pop_front();
    lock.unlock();
    block();
    block = nullptr; // lets go of its document before it counts as done
    --m_pending;
}

TestWorkerQueue::~TestWorkerQueue()
{
    for (Worker &worker : m_workers)
        worker.thread.join();
}

void TestWorkerQueue::post(std::function<void()> job)
{
    ++m_running;
    const std::scoped_lock lock(m_mutex);
    joinEnded();
    Worker &worker = m_workers.emplace_back();
    worker.thread = std::thread([this, &worker, job = std::move(job)]() mutable {
        job();
        job = nullptr; // lets go of its document before it counts as done
        worker.hasEnded = true;
        --m_running;
    });
}

/// Each keeps its stack until then, and a long walk starts very many.
void TestWorkerQueue::joinEnded()
{
    m_workers.remove_if([](Worker &worker) {
        const bool hasEnded = worker.hasEnded;
        if (hasEnded)
            worker.thread.join();
        return hasEnded;
    });
}

class ManualTimers::ManualTimer : public platform::Timer {
public:
    explicit ManualTimer(Armed armed)
        : what(std::move(armed))
    {
    }
    /// Lets go of what it holds, as a timer must that its own block refers back to.
    void invalidate() override
    {
        isArmed = false;
        what.fire = nullptr;
    }

    Armed what;
    std::atomic<bool> isArmed = true;
};

std::shared_ptr<platform::Timer> ManualTimers::schedule(double interval, double tolerance,
                                                        std::function<void()> fire)
{
    auto timer = std::make_shared<ManualTimer>(Armed{interval, tolerance, std::move(fire)});
    const std::scoped_lock lock(m_mutex);
    m_timers.append(timer);
    return timer;
}

QList<ManualTimers::Armed> ManualTimers::armed() const
{
    const std::scoped_lock lock(m_mutex);
    QList<Armed> armed;
    for (const auto &timer : m_timers) {
        if (timer->isArmed)
            armed.append(timer->what);
    }
    return armed;
}

double ManualTimers::fireNext()
{
    std::shared_ptr<ManualTimer> next;
    {
        const std::scoped_lock lock(m_mutex);
        m_timers.removeIf([](const auto &timer) { return !timer->isArmed; });
        if (m_timers.isEmpty())
            return -1;
        next = m_timers.takeFirst();
    }
    next->isArmed = false;
    std::exchange(next->what.fire, nullptr)();
    return next->what.interval;
}

void ManualTimers::forgetAll()
{
    QList<std::shared_ptr<ManualTimer>> timers;
    {
        const std::scoped_lock lock(m_mutex);
        timers.swap(m_timers);
    }
    for (const auto &timer : timers) // not under the lock: what a timer holds may ask for it
        timer->invalidate();
}

void MemoryPreferences::store(const QString &key, const QVariant &value)
{
    const std::scoped_lock lock(m_mutex);
    m_values.insert(key, value);
    m_changes.append(key);
    isSaved = false;
}

void MemoryPreferences::discard(const QString &key)
{
    const std::scoped_lock lock(m_mutex);
    m_values.remove(key);
    m_changes.append(key);
    isSaved = false;
}

QVariantMap MemoryPreferences::stored() const
{
    const std::scoped_lock lock(m_mutex);
    return m_values;
}

QStringList MemoryPreferences::takeChanges()
{
    const std::scoped_lock lock(m_mutex);
    return std::exchange(m_changes, {});
}

QVariant MemoryPreferences::storedValue(const QString &key) const
{
    const std::scoped_lock lock(m_mutex);
    return m_values.value(key);
}

QString TestFiles::failureOf(const char *operation, const QString &path) const
{
    return failure ? failure(QString::fromLatin1(operation), path) : QString();
}

platform::FileKind TestFiles::kind(const QString &path) const
{
    return unreadable.contains(path) ? platform::FileKind() : PosixFileService::kind(path);
}

QStringList TestFiles::contentsOfDirectory(const QString &path, platform::FolderLink link) const
{
    if (unreadable.contains(path))
        return {};
    QStringList names = PosixFileService::contentsOfDirectory(path, link);
    if (sortsListings)
        names.sort();
    return names;
}

QList<platform::FolderEntry> TestFiles::entriesOfDirectory(const QString &path,
                                                           platform::FolderLink link) const
{
    QList<platform::FolderEntry> entries;
    for (const QString &name : contentsOfDirectory(path, link))
        entries.append({name, kind(path + u'/' + name)});
    return entries;
}

Outcome TestFiles::createDirectory(const QString &path)
{
    const QString error = failureOf("createDirectory", path);
    return error.isNull() ? PosixFileService::createDirectory(path) : Outcome::failure(error);
}

Outcome TestFiles::createFile(const QString &path)
{
    const QString error = failureOf("createFile", path);
    return error.isNull() ? PosixFileService::createFile(path) : Outcome::failure(error);
}

Outcome TestFiles::removeItem(const QString &path)
{
    const QString error = failureOf("removeItem", path);
    return error.isNull() ? PosixFileService::removeItem(path) : Outcome::failure(error);
}

Outcome TestFiles::moveItem(const QString &from, const QString &to)
{
    const QString error = failureOf("moveItem", to);
    return error.isNull() ? PosixFileService::moveItem(from, to) : Outcome::failure(error);
}

Outcome TestFiles::copyItem(const QString &from, const QString &to)
{
    const QString error = failureOf("copyItem", to);
    return error.isNull() ? PosixFileService::copyItem(from, to) : Outcome::failure(error);
}

Outcome TestFiles::copyResolvedItem(const QString &from, const QString &to)
{
    const QString error = failureOf("copyItem", to);
    return error.isNull() ? PosixFileService::copyResolvedItem(from, to) : Outcome::failure(error);
}

Outcome TestFiles::trashItem(const QString &path)
{
    const QString error = failureOf("trashItem", path);
    if (!error.isNull())
        return Outcome::failure(error);
    QDir().mkpath(m_trash);
    trashed.append(path);
    return PosixFileService::moveItem(path, m_trash + u'/' + QString::number(trashed.size()));
}

Outcome TestFiles::setPermissions(const QString &path, unsigned mode)
{
    const QString error = failureOf("setPermissions", path);
    return error.isNull() ? PosixFileService::setPermissions(path, mode) : Outcome::failure(error);
}

Outcome TestFiles::setPermissionsInside(const QString &item, const QString &inside, unsigned mode)
{
    const QString error = failureOf("setPermissions", item + u'/' + inside);
    return error.isNull() ? PosixFileService::setPermissionsInside(item, inside, mode)
                          : Outcome::failure(error);
}

platform::Result<QByteArray> TestFiles::readFile(const QString &path) const
{
    const QString error = failureOf("readFile", path);
    return error.isNull() ? PosixFileService::readFile(path) : platform::Error{error};
}

bool TestFiles::isReadable(const QString &path) const
{
    return failureOf("isReadable", path).isNull() && PosixFileService::isReadable(path);
}

Outcome TestFiles::writeFile(const QString &path, const QByteArray &bytes)
{
    const QString error = failureOf("writeFile", path);
    return error.isNull() ? PosixFileService::writeFile(path, bytes) : Outcome::failure(error);
}

Outcome TestFiles::writeFileAtomically(const QString &path, const QByteArray &bytes)
{
    const QString error = failureOf("writeFileAtomically", path);
    return error.isNull() ? PosixFileService::writeFileAtomically(path, bytes) : Outcome::failure(error);
}

platform::Result<QString> TestFiles::replacementDirectory(const QString &forItem)
{
    const QString error = failureOf("replacementDirectory", forItem);
    return error.isNull() ? PosixFileService::replacementDirectory(forItem) : platform::Error{error};
}

Outcome TestFiles::replaceItem(const QString &path, const QString &replacement)
{
    const QString error = failureOf("replaceItem", path);
    return error.isNull() ? PosixFileService::replaceItem(path, replacement) : Outcome::failure(error);
}

std::optional<QByteArray> FakeUrlReader::contentsOf(const QUrl &url)
{
    asked.append(url);
    if (contents.contains(url))
        return contents.value(url);
    return otherwise ? otherwise->contentsOf(url) : std::nullopt;
}

Outcome FakeWorkspace::launchInBackground(const QString &bundleIdentifier)
{
    launched.append(bundleIdentifier);
    return installed.contains(bundleIdentifier) ? Outcome::success()
                                                : Outcome::failure(bundleIdentifier + u" is not installed"_s);
}

platform::AppleScriptResult FakeAppleScript::execute(const QString &source,
                                                     std::optional<std::chrono::milliseconds> limit)
{
    sources.append(source);
    limits.append(limit);
    if (whileRunning)
        whileRunning();
    return result;
}

void FakeDistributedNotifications::addObserver(const QObject &observer, const QString &name,
                                               std::function<void()> handler, platform::Repeats repeats)
{
    handlers[name] = std::move(handler);
    if (repeats == platform::Repeats::areMerged)
        merged.insert(name);
    m_namesOfObservers.insert(&observer, name);
}

void FakeDistributedNotifications::removeObserver(const QObject &observer)
{
    for (const QString &name : m_namesOfObservers.values(&observer))
        handlers.remove(name);
    m_namesOfObservers.remove(&observer);
}

void FakeDistributedNotifications::post(const QString &name)
{
    posted.append(name);
    if (const auto handler = handlers.value(name))
        handler();
}

void FakeUserNotificationCenter::deliver(const platform::UserNotification &notification)
{
    delivered.append(notification);
}

void FakeUpdater::setSendsSystemProfile(bool sends)
{
    sendsSystemProfile = sends;
    if (onCall)
        onCall();
}

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
