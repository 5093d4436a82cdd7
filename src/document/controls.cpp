#include "document/controls.h"

namespace sealwright {

void Control::setIsHidden(bool isHidden)
{
    if (std::exchange(m_isHidden, isHidden) != isHidden)
        Q_EMIT changed();
}

void Control::setIsEnabled(bool isEnabled)
{
    if (std::exchange(m_isEnabled, isEnabled) != isEnabled)
        Q_EMIT changed();
}

void TextField::setStringValue(const QString &value)
{
    if (std::exchange(m_stringValue, value) != value)
        Q_EMIT changed();
}

void TextField::setTextColor(const GreyColour &colour)
{
    if (m_textColor == colour)
        return;
    m_textColor = colour;
    Q_EMIT changed();
}

void TextView::setText(const QList<StyledText> &text)
{
    if (m_text == text)
        return;
    m_text = text;
    Q_EMIT changed();
}

void Checkbox::setState(int state)
{
    if (std::exchange(m_state, state) != state)
        Q_EMIT changed();
}

void Popup::setItemTitles(const QStringList &titles)
{
    m_itemTitles = titles;
    m_representedObjects.clear();
    if (!titles.contains(m_title))
        m_title = titles.value(0);
    Q_EMIT changed();
}

void Popup::setItems(const QList<PopupItem> &items)
{
    m_itemTitles.clear();
    m_representedObjects.clear();
    for (const PopupItem &item : items) {
        m_itemTitles.append(item.title);
        m_representedObjects.append(item.representedObject);
    }
    m_title = m_itemTitles.value(0);
    Q_EMIT changed();
}

QString Popup::representedObjectOfSelectedItem() const
{
    return m_representedObjects.value(m_itemTitles.indexOf(m_title), QStringLiteral(""));
}

void Popup::selectItemWithTitle(const QString &title)
{
    if (m_itemTitles.contains(title) && std::exchange(m_title, title) != title)
        Q_EMIT changed();
}

void Button::setTitle(const QString &title)
{
    if (std::exchange(m_title, title) != title)
        Q_EMIT changed();
}

void Button::setKeyEquivalent(const QString &key)
{
    if (std::exchange(m_keyEquivalent, key) != key)
        Q_EMIT changed();
}

void Button::setToolTip(const QString &toolTip)
{
    if (std::exchange(m_toolTip, toolTip) != toolTip)
        Q_EMIT changed();
}

void Button::setAction(Action action)
{
    if (std::exchange(m_action, action) != action)
        Q_EMIT changed();
}

void TabView::selectTabViewItemAtIndex(int index)
{
    if (std::exchange(m_selectedIndex, index) != index)
        Q_EMIT changed();
}

void ProgressIndicator::startAnimation()
{
    if (!std::exchange(m_isAnimating, true))
        Q_EMIT changed();
}

void ProgressIndicator::stopAnimation()
{
    if (std::exchange(m_isAnimating, false))
        Q_EMIT changed();
}

void LogText::append(const Run &run)
{
    m_runs.append(run);
    Q_EMIT appended(run);
}

void LogText::clear()
{
    m_runs.clear();
    Q_EMIT cleared();
}

QString LogText::string() const
{
    QString text;
    for (const Run &run : m_runs)
        text += run.text;
    return text;
}

} // namespace sealwright
