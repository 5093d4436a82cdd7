#include "ui/statetext.h"

#include <QApplication>
#include <QLabel>

namespace sealwright {

void statetext::put(QLabel &line, const QString &text, theme::Meaning meaning)
{
    QPalette palette;
    palette.setColor(QPalette::WindowText, theme::colourOf(meaning, QApplication::palette(&line)));
    line.setPalette(palette);
    line.setText(text);
    line.setVisible(!text.isEmpty());
}

} // namespace sealwright
