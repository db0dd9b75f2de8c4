#include "ProgramListing.h"

namespace {
const QByteArray kCommandPrompt = QByteArrayLiteral("CMD:");
const QByteArray kRemotePrompt = QByteArrayLiteral("RPG:");
// A reply that ends without a line end leaves this much of its tail as the last line.
constexpr int kTailLength = 5;

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// The first letter at or after pos; the end of the reply when there is none.
qsizetype toLetter(const QByteArray &reply, qsizetype pos)
{
    while (pos < reply.size() && !isLetter(reply[pos]))
        ++pos;
    return pos;
}
} // namespace

ProgramListing parseProgramListing(const QByteArray &reply)
{
    ProgramListing listing;
    qsizetype promptAt = reply.indexOf(kCommandPrompt);
    listing.prompt = kCommandPrompt;
    if (promptAt < 0) {
        promptAt = reply.indexOf(kRemotePrompt);
        listing.prompt = kRemotePrompt;
    }
    if (promptAt < 0) {
        listing.prompt.clear();
        return listing;
    }

    const qsizetype echoAt = reply.indexOf(kListingRequest);
    qsizetype start = toLetter(reply, echoAt >= 0 ? echoAt + kListingRequest.size() : 0);
    for (;;) {
        const qsizetype cr = reply.indexOf('\r', start);
        const bool lastRound = cr < 0;
        const QByteArray entry = lastRound ? reply.right(kTailLength) : reply.mid(start, cr - start);
        if (listing.lines.size() < kLineTableSize)
            listing.lines.append(QString::fromLatin1(entry));
        if (lastRound)
            break;
        start = toLetter(reply, cr);
        // The prompt closes the listing and never becomes a line itself.
        if (start == promptAt)
            break;
    }
    return listing;
}
