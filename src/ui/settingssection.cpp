#include "ui/settingssection.h"

#include "ui/named.h"
#include "ui/preferencebindings.h"
#include "ui/settingrows.h"
#include "ui/spacing.h"
#include "ui/titlefont.h"
#include "ui/toplevel.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QLabel>
#include <QSpinBox>
#include <QStyle>

namespace sealwright {

namespace {

constexpr int captionCharacters = 28;

} // namespace

SettingsSection::SettingsSection(platform::Preferences &preferences, QWidget *parent)
    : QWidget(parent)
    , m_preferences(preferences)
    , m_rows(new QVBoxLayout(this))
{
    m_rows->setSpacing(spacing::near);
    m_rows->setContentsMargins(2 * spacing::edge, spacing::apart, 2 * spacing::edge, spacing::apart);
}

void SettingsSection::addTitle(const QString &title)
{
    constexpr qreal scale = 1.35; // of the text
    auto *const heading = new QLabel(title, this);
    heading->setFont(titleFont(heading->font(), scale));
    m_rows->addWidget(heading);
}

void SettingsSection::addCheckbox(const QString &key, const QString &label, const QString &explanation)
{
    auto *const box = named(new QCheckBox(label, this), key, settingrows::plainLabel(label));
    bindings::bind(*box, m_preferences, key);
    beginSetting();
    m_rows->addWidget(box);
    explain(*box, explanation,
            style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, box)
                + style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, box));
}

void SettingsSection::addField(QWidget *field, QWidget &setting, const QString &label,
                               const QString &explanation)
{
    auto *const row = new QHBoxLayout;
    row->setSpacing(spacing::between);
    QWidget *const caption = settingrows::makeCaption(this, label, setting);
    caption->setMinimumWidth(caption->fontMetrics().averageCharWidth() * captionCharacters);
    row->addWidget(caption);
    row->addWidget(field, field == &setting ? 0 : 1);
    if (field == &setting)
        row->addStretch(1);
    beginSetting();
    m_rows->addLayout(row);
    explain(setting, explanation, 0);
}

void SettingsSection::addNumber(const QString &key, const QString &label, const Range &range,
                                const QString &unit, const QString &explanation)
{
    auto *const box = new QSpinBox(this);
    box->setObjectName(key);
    box->setRange(static_cast<int>(range.least), static_cast<int>(range.most));
    box->setSuffix(u' ' + unit);
    toplevel::leaveTheWheelToScrolling(*box);
    bindings::bind(*box, m_preferences, key);
    addField(box, *box, label, explanation);
}

void SettingsSection::addSeconds(const QString &key, const QString &label, const Range &range,
                                 const QString &explanation)
{
    auto *const box = new QDoubleSpinBox(this);
    box->setObjectName(key);
    box->setDecimals(range.decimals);
    box->setRange(range.least, range.most);
    box->setSingleStep(range.step);
    box->setSuffix(u' ' + tr("seconds"));
    toplevel::leaveTheWheelToScrolling(*box);
    bindings::bind(*box, m_preferences, key);
    addField(box, *box, label, explanation);
}

void SettingsSection::fillUp()
{
    m_rows->addStretch(1);
}

void SettingsSection::beginSetting()
{
    if (m_rows->count() > 0)
        m_rows->addSpacing(spacing::apart);
}

void SettingsSection::explain(QWidget &setting, const QString &explanation, int indent)
{
    auto *const text = new QLabel(explanation, this);
    text->setWordWrap(true);
    text->setForegroundRole(QPalette::PlaceholderText);
    text->setIndent(indent);
    setting.setAccessibleDescription(explanation);
    m_rows->addWidget(text);
}

} // namespace sealwright
