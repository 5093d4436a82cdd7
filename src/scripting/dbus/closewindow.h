#pragma once

namespace sealwright {

struct BusObject;
class BusCall;

/// Closes the window of a document, or the document of a window, as a person would; the answer goes first.
void closeWindow(const BusObject &object, const BusCall &call);

} // namespace sealwright
