#pragma once

#include "ui/theme.h"

#include <QLabel>

#include <functional>

class QLineEdit;

namespace sealwright {

/// A line below a field that says what is wrong with what stands there, before anybody is refused for it. It
/// waits until somebody has been in the field, or until it is told to insist. Main thread.
class FieldHint : public QLabel {
    Q_OBJECT

public:
    /// What is wrong with the text; empty if nothing is.
    using Problem = std::function<QString(const QString &text)>;

    FieldHint(QLineEdit &field, Problem problem, QWidget *parent);

    /// From now on it speaks of an untouched field too.
    void insist();
    /// Says something else about the text that stands there, until that changes.
    void tell(const QString &text, theme::Meaning meaning);
    bool hasProblem() const;

Q_SIGNALS:
    /// A person has left the field with another text in it.
    void settled(const QString &text);

private:
    void check();

    QLineEdit &m_field;
    const Problem m_problem;
    QString m_settled;
    bool m_speaks = false;
};

} // namespace sealwright
