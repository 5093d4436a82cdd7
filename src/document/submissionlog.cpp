#include "document/mainwincontroller.h"

#include "platform/preferences.h"
#include "platform/scriptcommand.h"
#include "run/preferencekeys.h"

using namespace Qt::StringLiterals;

namespace sealwright {

void MainWinController::appendToWindowLog(const QString &line, LogStyle style)
{
    statusTextView.append({line, style, attributesFor(style)});
}

void MainWinController::logString(const QString &message, bool isError)
{
    isError ? log.logError(message) : log.logString(message);
}

void MainWinController::logStringMain(const QString &message, bool isError)
{
    appendToWindowLog(log.noteInFile(message), isError ? LogStyle::error : LogStyle::plain);
}

void MainWinController::clearLogUnlessKept()
{
    if (!dontClearCheckbox.isOn())
        statusTextView.clear();
}

void MainWinController::contentsOfLog()
{
    if (const auto command = currentCommand())
        command->resumeExecutionWithResult(statusTextView.string());
}

TextAttributes MainWinController::logAttributes() const
{
    return {u"Menlo"_s, static_cast<int>(host().preferences.integer(key::logFontSize)),
            TextAttributes::Colour::text};
}

TextAttributes MainWinController::errorAttributes() const
{
    TextAttributes attributes = logAttributes();
    attributes.colour = TextAttributes::Colour::systemRed;
    return attributes;
}

TextAttributes MainWinController::boldLogAttributes() const
{
    TextAttributes attributes = logAttributes();
    attributes.fontName = u"Menlo-Bold"_s;
    return attributes;
}

TextAttributes MainWinController::italicLogAttributes() const
{
    TextAttributes attributes = logAttributes();
    attributes.fontName = u"Menlo-Italic"_s;
    return attributes;
}

TextAttributes MainWinController::attributesFor(LogStyle style) const
{
    switch (style) {
    case LogStyle::error:
        return errorAttributes();
    case LogStyle::bold:
        return boldLogAttributes();
    case LogStyle::italic:
        return italicLogAttributes();
    case LogStyle::plain:
        break;
    }
    return logAttributes();
}

} // namespace sealwright
