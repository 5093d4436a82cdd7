#pragma once

#include "ui/theme.h"

class QLabel;
class QString;

namespace sealwright {

/// A line that says how something stands, in the colour of what it means. Main thread.
namespace statetext {

/// Puts the text there; an empty one takes the line away.
void put(QLabel &line, const QString &text, theme::Meaning meaning);

} // namespace statetext

} // namespace sealwright
