#include "ui/fieldhint.h"

#include "ui/statetext.h"

#include <QLineEdit>

namespace sealwright {

FieldHint::FieldHint(QLineEdit &field, Problem problem, QWidget *parent)
    : QLabel(parent)
    , m_field(field)
    , m_problem(std::move(problem))
{
    setObjectName(field.objectName() + QStringLiteral("Hint"));
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setVisible(false);
    connect(&field, &QLineEdit::textChanged, this, &FieldHint::check);
    connect(&field, &QLineEdit::editingFinished, this, [this] {
        insist();
        if (!hasProblem() && std::exchange(m_settled, m_field.text()) != m_field.text())
            Q_EMIT settled(m_field.text());
    });
}

void FieldHint::insist()
{
    if (std::exchange(m_speaks, true))
        return;
    check();
}

bool FieldHint::hasProblem() const
{
    return !m_problem(m_field.text()).isEmpty();
}

void FieldHint::check()
{
    tell(m_speaks ? m_problem(m_field.text()) : QString(), theme::Meaning::caution);
}

void FieldHint::tell(const QString &text, theme::Meaning meaning)
{
    statetext::put(*this, text, meaning);
    m_field.setAccessibleDescription(text);
}

} // namespace sealwright
