#include "scripting/NSWindow+Scripting.h"

#include "document/applicationinterface.h"
#include "document/mainwincontroller.h"
#include "scripting/NSApplication+Scripting.h"
#include "scripting/scripterrors.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr QPoint asideOfGroup(21, -23); // y grows upward

using Windows = QList<platform::Window *>;
using WindowProperty = ScriptProperty<NSWindowScripting>;

/// The place in the list of the window whose tabs hold the other one; negative if there is none.
qsizetype positionOfGroup(const Windows &ordered, platform::Window &tab)
{
    const auto found = std::find_if(ordered.cbegin(), ordered.cend(), [&tab](const platform::Window *window) {
        return window->tabbedWindows().contains(&tab);
    });
    return found == ordered.cend() ? -1 : found - ordered.cbegin();
}

/// The position from 0 that an index from 1 stands for; nothing beyond the list. An index below 1 is one
/// beyond its end, so there is none for it.
std::optional<qsizetype> positionOf(qint64 index, qsizetype count)
{
    return index >= 1 && index <= count ? std::optional<qsizetype>(index - 1) : std::nullopt;
}

/// The text has the index first and then the count, if it asks for one.
void refuseIndex(const QString &text, qint64 index, qsizetype count)
{
    const QString withIndex = text.arg(index);
    setScriptError(scriptErrorArgument, count == 1 ? withIndex : withIndex.arg(count));
}

} // namespace

platform::Window &NSWindowScripting::window() const
{
    return document.window();
}

Windows NSWindowScripting::orderedWindows() const
{
    return NSApplicationScripting(document.appDelegate()).orderedWindows();
}

// Order

qint64 NSWindowScripting::AEOrderedIndex() const
{
    const Windows ordered = orderedWindows();
    const qsizetype position = ordered.indexOf(&window());
    return (position >= 0 ? position : positionOfGroup(ordered, window())) + 1;
}

void NSWindowScripting::setAEOrderedIndex(qint64 index)
{
    const qsizetype count = orderedWindows().size();
    const auto target = positionOf(index, count);
    if (!target && count == 1)
        return refuseIndex(u"Invalid index: %1; there is only 1 window."_s, index, count);
    if (!target)
        return refuseIndex(u"Invalid index: %1; there are only %2 windows."_s, index, count);
    if (count == 1 || *target == AEOrderedIndex() - 1)
        return;
    // A position where the host expects a window's number: scripts in use know what comes of it.
    window().tabGroup().selectedWindow()->orderAbove(*target);
}

// Tabs

Windows NSWindowScripting::AETabbedWindows() const
{
    return AEIsVisible() ? window().tabbedWindows() : Windows();
}

bool NSWindowScripting::AEIsVisible() const
{
    return orderedWindows().contains(&window());
}

void NSWindowScripting::setAEIsVisible(bool isVisible)
{
    if (AEIsVisible())
        return;
    const Windows ordered = orderedWindows();
    const qsizetype group = positionOfGroup(ordered, window());
    if (group < 0)
        return;
    const Windows tabs = ordered.at(group)->tabbedWindows();
    const qsizetype position = tabs.indexOf(&window());
    const qsizetype beside = position + 1 < tabs.size() ? position + 1 : position - 1;
    window().tabGroup().setSelectedWindow(*tabs.at(isVisible ? position : beside));
}

qint64 NSWindowScripting::AETabOrderedIndex() const
{
    return window().tabGroup().windows().indexOf(&window()) + 1;
}

void NSWindowScripting::setAETabOrderedIndex(qint64 index)
{
    const qsizetype count = window().tabbedWindows().size();
    if (count == 0)
        return;
    const auto target = positionOf(index, count);
    if (!target && count == 1)
        return refuseIndex(u"Invalid index: %1; there is only 1 tab in the window."_s, index, count);
    if (!target)
        return refuseIndex(u"Invalid index: %1; there are only %2 tabs in the window."_s, index, count);
    platform::TabGroup &group = window().tabGroup();
    group.removeWindow(window());
    group.insertWindow(window(), *target);
}

bool NSWindowScripting::AEIsTabbed() const
{
    return window().tabGroup().windows().size() > 1;
}

void NSWindowScripting::setAEIsTabbed(bool isTabbed)
{
    if (isTabbed == AEIsTabbed())
        return;
    if (isTabbed)
        joinNeighbour();
    else
        leaveGroup();
}

void NSWindowScripting::leaveGroup()
{
    platform::TabGroup &group = window().tabGroup();
    group.removeWindow(window());
    const QRect frame = window().frame().translated(asideOfGroup);
    window().orderAbove(orderedWindows().indexOf(group.selectedWindow())); // again no number of a window
    window().setFrame(frame);
}

void NSWindowScripting::joinNeighbour()
{
    const Windows ordered = orderedWindows();
    if (ordered.size() < 2)
        return;
    // A window that is not on screen, with a position before the first, joins the frontmost.
    const qsizetype position = ordered.indexOf(&window());
    const bool isRearmost = position == ordered.size() - 1;
    platform::TabGroup &group = ordered.at(isRearmost ? position - 1 : position + 1)->tabGroup();
    group.insertWindow(window(), group.windows().size() - 1);
}

platform::Window *NSWindowScripting::AEParentWindow() const
{
    return window().tabGroup().selectedWindow();
}

void NSWindowScripting::setAEParentWindow(platform::Window &parent)
{
    platform::TabGroup &own = window().tabGroup();
    if (&parent == &window() || own.windows().contains(&parent))
        return;
    platform::TabGroup &group = parent.tabGroup();
    const qsizetype end = group.windows().size();
    if (AEIsTabbed())
        own.removeWindow(window());
    group.insertWindow(window(), end);
}

// Bounds

std::optional<platform::QDRect> NSWindowScripting::AEBoundsAsQDRect() const
{
    const platform::Window *const visible = visibleTab();
    return visible ? std::optional(visible->boundsAsQDRect()) : std::nullopt;
}

void NSWindowScripting::setAEBoundsAsQDRect(const platform::QDRect &bounds)
{
    if (platform::Window *const visible = visibleTab())
        visible->setBoundsAsQDRect(bounds);
}

platform::Window *NSWindowScripting::visibleTab() const
{
    const Windows ordered = orderedWindows();
    if (ordered.contains(&window()))
        return &window();
    const Windows tabs = window().tabbedWindows();
    const auto found = std::find_if(tabs.cbegin(), tabs.cend(),
                                    [&ordered](platform::Window *tab) { return ordered.contains(tab); });
    return found == tabs.cend() ? nullptr : *found;
}

QString NSWindowScripting::description() const
{
    return u"NSWindow '%1'"_s.arg(title());
}

// The properties by their keys

const QList<WindowProperty> &NSWindowScripting::properties()
{
    using Window = NSWindowScripting;
    static const QList<WindowProperty> all{
        {u"title"_s, [](Window &window) { return window.title(); }},
        {u"document"_s, [](Window &window) { return QVariant::fromValue(&window.controller()); }},
        {u"AEOrderedIndex"_s, [](Window &window) { return window.AEOrderedIndex(); },
         [](Window &window, const QVariant &value) { window.setAEOrderedIndex(value.toLongLong()); }},
        {u"AETabbedWindows"_s,
         [](Window &window) {
             const Windows tabs = window.AETabbedWindows();
             return tabs.isEmpty() ? QVariant() : QVariant::fromValue(tabs);
         }},
        {u"AEIsVisible"_s, [](Window &window) { return window.AEIsVisible(); },
         [](Window &window, const QVariant &value) { window.setAEIsVisible(value.toBool()); }},
        {u"AETabOrderedIndex"_s, [](Window &window) { return window.AETabOrderedIndex(); },
         [](Window &window, const QVariant &value) { window.setAETabOrderedIndex(value.toLongLong()); }},
        {u"AEIsTabbed"_s, [](Window &window) { return window.AEIsTabbed(); },
         [](Window &window, const QVariant &value) { window.setAEIsTabbed(value.toBool()); }},
        {u"AEBoundsAsQDRect"_s,
         [](Window &window) {
             const auto bounds = window.AEBoundsAsQDRect();
             return bounds ? QVariant::fromValue(*bounds) : QVariant();
         },
         [](Window &window, const QVariant &value) {
             window.setAEBoundsAsQDRect(value.value<platform::QDRect>());
         }},
        {u"AEParentWindow"_s, [](Window &window) { return QVariant::fromValue(window.AEParentWindow()); },
         [](Window &window, const QVariant &value) {
             window.setAEParentWindow(*value.value<platform::Window *>());
         }},
    };
    return all;
}

} // namespace sealwright
