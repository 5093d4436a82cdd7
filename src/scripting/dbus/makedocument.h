#pragma once

namespace sealwright {

struct BusObject;
class BusCall;

/// Makes a document with the properties of the call's dictionary. Nothing is made if one of them is unknown,
/// has no write or is of the wrong type; a write that fails leaves the document as it stands then.
void makeDocument(const BusObject &application, const BusCall &call);

} // namespace sealwright
