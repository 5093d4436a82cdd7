#include "windowtest.h"

#include <QAbstractButton>
#include <QPointer>

namespace {

constexpr int deadline = 20'000; // milliseconds

} // namespace

WindowTest::WindowTest()
{
    host.applicationHost.otherWindows = [this] { return order.frontToBack(); };
    host.launch();
    host.settle();
}

WindowTest::~WindowTest()
{
    host.settle();
    while (!host.application().allControllers().isEmpty()) // a sheet that is still up keeps its document
        document().window().close();
}

void WindowTest::until(const std::function<bool()> &condition)
{
    if (!QTest::qWaitFor(condition, deadline))
        throw std::runtime_error("waited in vain");
}

AlertBox *WindowTest::sheet()
{
    for (auto *const box : page().findChildren<AlertBox *>()) {
        if (box->isVisible())
            return box;
    }
    return nullptr;
}

AlertBox &WindowTest::awaitSheet()
{
    until([this] { return sheet() != nullptr; });
    return *sheet();
}

void WindowTest::answer(const QString &title)
{
    const QPointer<AlertBox> box = &awaitSheet();
    for (auto *const button : box->buttons()) {
        if (button->text() == title) {
            QTest::mouseClick(button, Qt::LeftButton);
            return until([&box] { return box.isNull(); });
        }
    }
    throw std::runtime_error("no such button: " + title.toStdString());
}
