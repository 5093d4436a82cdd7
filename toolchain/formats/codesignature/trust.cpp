#include "formats/codesignature/trust.h"

#include <QTimeZone>

#include <openssl/err.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <iterator>

#include "formats/cryptography.h"

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

using Store = std::unique_ptr<X509_STORE, Freed<X509_STORE_free>>;
using StoreContext = std::unique_ptr<X509_STORE_CTX, Freed<X509_STORE_CTX_free>>;

void freeCertificates(STACK_OF(X509) * stack)
{
    sk_X509_pop_free(stack, X509_free);
}
using Stack = std::unique_ptr<STACK_OF(X509), Freed<freeCertificates>>;

/// No signature of Apple's has as many; a crafted one shall cost no more.
constexpr qsizetype mostCertificates = 64;

constexpr const char *developerIdAuthority = "1.2.840.113635.100.6.2.6";
constexpr const char *developerIdApplication = "1.2.840.113635.100.6.1.13";
constexpr const char *developerIdInstaller = "1.2.840.113635.100.6.1.14";
constexpr const char *ticketSigning = "1.2.840.113635.100.6.1.30";
constexpr const char *codeSigningUsage = "1.3.6.1.5.5.7.3.3";
constexpr const char *timeStampingUsage = "1.3.6.1.5.5.7.3.8";

/// The certificates that may stand above a leaf, level by level, by their bearing the bytes of its issuer's
/// name. To parse a certificate costs far more than to search it.
QList<QByteArray> possibleIssuers(X509 *leaf, const QList<QByteArray> &certificates)
{
    constexpr int mostLevels = 8;
    QList<QByteArray> found;
    QList<QByteArray> names{encoded<i2d_X509_NAME>(X509_get_issuer_name(leaf))};
    for (int level = 0; level < mostLevels && !names.isEmpty(); ++level) {
        const QByteArray name = names.takeFirst();
        for (const QByteArray &der : certificates) {
            const Certificate issuer =
                der.contains(name) && !found.contains(der) ? certificateFrom(der) : nullptr;
            if (!issuer)
                continue;
            found.append(der);
            names.append(encoded<i2d_X509_NAME>(X509_get_issuer_name(issuer.get())));
        }
    }
    return found;
}

QList<QByteArray> membersOf(const QList<QByteArray> &some, const QList<QByteArray> &all)
{
    QList<QByteArray> members;
    std::copy_if(some.begin(), some.end(), std::back_inserter(members),
                 [&all](const QByteArray &der) { return all.contains(der); });
    return members;
}

Stack stackOf(const QList<QByteArray> &certificates)
{
    Stack stack(sk_X509_new_null());
    for (const QByteArray &der : certificates.first(std::min(certificates.size(), mostCertificates))) {
        if (Certificate certificate = certificateFrom(der))
            sk_X509_push(stack.get(), certificate.release());
    }
    return stack;
}

QList<QByteArray> anchorsFor(const TrustStore &store, TrustPurpose purpose)
{
    const bool countsService = purpose == TrustPurpose::timestamping;
    return store.apple + store.thisMachine + (countsService ? store.service : QList<QByteArray>());
}

Store storeWith(const QList<QByteArray> &anchors)
{
    Store store(X509_STORE_new());
    for (const QByteArray &der : anchors) {
        const Certificate certificate = certificateFrom(der);
        if (certificate)
            X509_STORE_add_cert(store.get(), certificate.get());
    }
    return store;
}

/// Dates that do not fit are remembered in the context and the verification goes on, so that the anchor of an
/// expired certificate can still be told.
int passOverDates(int isFine, X509_STORE_CTX *context)
{
    const int error = X509_STORE_CTX_get_error(context);
    if (isFine == 1 || (error != X509_V_ERR_CERT_HAS_EXPIRED && error != X509_V_ERR_CERT_NOT_YET_VALID))
        return isFine;
    auto *problem = static_cast<TrustProblem *>(X509_STORE_CTX_get_app_data(context));
    *problem = error == X509_V_ERR_CERT_HAS_EXPIRED ? TrustProblem::expired : TrustProblem::notYetValid;
    return 1;
}

TrustProblem problemOf(int error)
{
    switch (error) {
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
    case X509_V_ERR_CERT_UNTRUSTED:
        return TrustProblem::untrusted;
    default:
        return TrustProblem::broken;
    }
}

Anchor anchorOf(const QList<QByteArray> &chain, const TrustStore &store)
{
    const QByteArray root = chain.value(chain.size() - 1);
    if (store.apple.contains(root))
        return Anchor::apple;
    if (store.thisMachine.contains(root))
        return Anchor::thisMachine;
    return store.service.contains(root) ? Anchor::service : Anchor::other;
}

bool isFit(X509 *leaf, TrustPurpose purpose)
{
    switch (purpose) {
    case TrustPurpose::any:
        return true;
    case TrustPurpose::codeSigning:
        return hasUsage(leaf, codeSigningUsage);
    case TrustPurpose::packageSigning:
        return hasExtension(leaf, developerIdInstaller) || hasExtension(leaf, developerIdApplication);
    case TrustPurpose::timestamping:
        return hasUsage(leaf, timeStampingUsage);
    case TrustPurpose::tickets:
        return hasExtension(leaf, ticketSigning);
    }
    return false;
}

/// `dates` outlives the context.
StoreContext contextFor(X509 *leaf, X509_STORE *store, STACK_OF(X509) * others, const QDateTime &at,
                        TrustProblem *dates)
{
    StoreContext context(X509_STORE_CTX_new());
    X509_STORE_CTX_init(context.get(), store, leaf, others);
    X509_VERIFY_PARAM *rules = X509_STORE_CTX_get0_param(context.get());
    X509_VERIFY_PARAM_set_flags(rules, X509_V_FLAG_IGNORE_CRITICAL | X509_V_FLAG_PARTIAL_CHAIN);
    X509_VERIFY_PARAM_set_purpose(rules, X509_PURPOSE_ANY);
    if (at.isValid())
        X509_VERIFY_PARAM_set_time(rules, at.toSecsSinceEpoch());
    X509_STORE_CTX_set_verify_cb(context.get(), passOverDates);
    X509_STORE_CTX_set_app_data(context.get(), dates);
    return context;
}

/// The chain and what is wrong with it, its anchor and its purpose apart.
Trust verified(X509 *leaf, const QList<QByteArray> &anchors, const QList<QByteArray> &helpers,
               const QDateTime &at)
{
    const Store store = storeWith(anchors);
    const Stack others = stackOf(helpers);
    TrustProblem dates = TrustProblem::none;
    const StoreContext context = contextFor(leaf, store.get(), others.get(), at, &dates);
    const bool isVerified = X509_verify_cert(context.get()) == 1;
    ERR_clear_error();
    return {derOfAll(X509_STORE_CTX_get0_chain(context.get())), Anchor::other,
            isVerified ? dates : problemOf(X509_STORE_CTX_get_error(context.get()))};
}

bool isDeveloperId(const QList<QByteArray> &chain, const char *leafMarker)
{
    const Certificate leaf = certificateFrom(chain.value(0));
    const Certificate above = certificateFrom(chain.value(1));
    return chain.size() == 3 && leaf && above && hasExtension(above.get(), developerIdAuthority)
        && hasExtension(leaf.get(), leafMarker);
}

} // namespace

QString Trust::text() const
{
    switch (problem) {
    case TrustProblem::none:
        return {};
    case TrustProblem::noCertificate:
        return u"there is no certificate"_s;
    case TrustProblem::broken:
        return u"the chain of certificates does not verify"_s;
    case TrustProblem::untrusted:
        return u"the certificate is not trusted: its chain ends in no known root"_s;
    case TrustProblem::wrongPurpose:
        return u"the certificate is for another purpose"_s;
    case TrustProblem::notYetValid:
        return u"the certificate is not valid yet"_s;
    case TrustProblem::expired:
        return u"the certificate has expired"_s;
    }
    return {};
}

Trust trustOf(const QByteArray &leaf, const QList<QByteArray> &others, TrustPurpose purpose,
              const QDateTime &at, const TrustStore &store)
{
    const Certificate certificate = certificateFrom(leaf);
    if (!certificate)
        return {};
    const QList<QByteArray> anchors = anchorsFor(store, purpose);
    const QList<QByteArray> helpers =
        others.first(std::min(others.size(), mostCertificates)) + store.intermediates;
    const QList<QByteArray> issuers = possibleIssuers(certificate.get(), helpers + anchors);
    Trust trust = verified(certificate.get(), membersOf(issuers, anchors), issuers, at);
    if (trust.problem == TrustProblem::untrusted) // names may be the same and written differently
        trust = verified(certificate.get(), anchors, helpers, at);
    const bool isVerified = trust.problem != TrustProblem::untrusted && trust.problem != TrustProblem::broken;
    if (isVerified)
        trust.anchor = anchorOf(trust.chain, store);
    if (isVerified && !isFit(certificate.get(), purpose))
        trust.problem = TrustProblem::wrongPurpose;
    return trust;
}

bool isDeveloperIdForCode(const QList<QByteArray> &chain)
{
    return isDeveloperId(chain, developerIdApplication);
}

bool isDeveloperIdForPackages(const QList<QByteArray> &chain)
{
    return isDeveloperId(chain, developerIdInstaller);
}

bool bringsItsChain(const QList<QByteArray> &certificates, const Trust &trust)
{
    return !trust.isGood() || certificates.size() != trust.chain.size()
        || std::all_of(trust.chain.begin(), trust.chain.end(),
                       [&certificates](const QByteArray &member) { return certificates.contains(member); });
}

} // namespace toolchain
