#pragma once

namespace sealwright {

class MainWinController;

/// What carries one workflow of a document: a class beside the document, so that the document stays a
/// document.
class DocumentExtension {
public:
    DocumentExtension(const DocumentExtension &) = delete;
    DocumentExtension &operator=(const DocumentExtension &) = delete;

protected:
    explicit DocumentExtension(MainWinController &owner)
        : document(owner)
    {
    }
    ~DocumentExtension() = default;

    MainWinController &document;
};

} // namespace sealwright
