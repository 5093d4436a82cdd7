// A ticket, and a ticket service's answer.

#include "formats/ticket/signedticket.h"
#include "formats/ticket/ticketlookup.h"
#include "fuzz/fuzzing.h"

using namespace toolchain;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes = inputBytes(data, size);
    const auto read = ticket::readTicket(bytes);
    if (read) {
        (void)read->isSignatureGood();
        require(read->signedBytes.size() + read->signature.size() <= bytes.size());
        for (const auto &entry : read->entries)
            require(entry.hash.size() == 20 && read->vouchesFor(entry));
    }
    const auto answer = ticket::readLookupReply(bytes, QStringLiteral("2/2/00"));
    require(answer.kind != ticket::LookupAnswer::Kind::found || !answer.ticket.isNull());
    return 0;
}
