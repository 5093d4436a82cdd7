#pragma once

#include "run/workflow.h"

#include <variant>

namespace sealwright {

/// Asks the notary tool for the teams of the account. The run's response is what it says.
[[nodiscard]] Workflow providersWorkflow();

/// Whether a notary tool of that major version can tell them.
[[nodiscard]] bool canListProviders(quint64 altoolVersionNumber);

/// What a person is told where there is nothing to choose from.
struct ProviderMessage {
    QString heading;
    QString detail;
};

/// A team of the account.
struct Provider {
    QString title; ///< the line that names it
    QString representedObject; ///< the short name, which the notary tool knows it by
};

/// The teams, in the order of the reply.
using Providers = QList<Provider>;

/// Reads the notary tool's reply, an XML property list.
[[nodiscard]] std::variant<Providers, ProviderMessage> readProviders(const SLWTaskResponse &response);

/// The tool's error without the tag in brackets, and whatever else, that stands in front; null for null.
[[nodiscard]] QString withoutTag(const QString &errorString);

} // namespace sealwright
