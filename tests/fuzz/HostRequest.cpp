#include <QTemporaryDir>

#include "common/Enrolment.h"
#include "desk/demo/DemoCards.h"
#include "fuzz/Target.h"
#include "platform/Sqlite.h"
#include "rovana-cardhost/Ledger.h"
#include "rovana-cardhost/RequestReader.h"

using namespace cardhost;
using namespace platform::message;
using fuzz::require;
using platform::SecureBytes;

namespace {

constexpr QStringView kEnrolled = u"4711";

/// A host with the demonstration's cards, as new for every input.
struct Host {
    Host() {
        for (const auto& card : desk::demoCards()) {
            if (card.isKnown) ledger.putCard(track3(card), card.password, card.balance, card.limit);
        }
        const SigningKey another = signingKeyFrom(SecureBytes(crypto_sign_SEEDBYTES, 2));
        require(enrolTerminal(folder.path(), kEnrolled.toString(), terminal.publicKey) &&
                    enrolTerminal(folder.path(), QStringLiteral("4712"), another.publicKey),
                "there are terminals, of which one asks");
        file.run("CREATE TABLE card_before AS SELECT * FROM card");
    }

    void reset() {
        file.run(
            "BEGIN; DELETE FROM payment; DELETE FROM exchange; UPDATE card SET wrong_passwords = 0, "
            "balance = (SELECT balance FROM card_before WHERE card_before.id = card.id); COMMIT");
    }
    qint64 money() {
        qint64 sum = 0;
        for (const CardState& card : ledger.cards()) sum += card.balance;
        return sum;
    }

    const QTemporaryDir folder;
    const SigningKey terminal = signingKeyFrom(SecureBytes(crypto_sign_SEEDBYTES, 1));
    QString error;
    Ledger ledger{folder.path(), openKeys(folder.path(), &error).value()};
    platform::SqliteFile file{folder.filePath(QStringLiteral("ledger.db")),
                              platform::SqliteFile::Mode::Existing};
};

SecureBytes answer(Host& host, const OpenedRequest& request, qint64* charged) {
    const qint64 before = host.money();
    const SecureBytes bytes = host.ledger.answer(request);
    *charged = before - host.money();
    const std::optional<Fields> reply = Fields::parse(bytes);
    require(reply && reply->has(kResponseCodeField) && reply->has(kResponseTextField) &&
                reply->has(kIdentificationField),
            "a request has an answer");
    const bool isPaid = reply->text(kResponseCodeField) == kApproved.code && *charged != 0;
    require(*charged == (isPaid ? reply->text(kAmountField).toLongLong() : 0),
            "what is told is what is charged");
    require(*charged >= 0, "nobody is paid");

    const std::optional<QByteArray> sealed =
        sealReply(request.number, bytes, request.replyKey, host.ledger.keys().box);
    require(sealed && !encodeFrame({FrameKind::Reply, request.number, *sealed}).isEmpty(),
            "an answer fits its frame");
    return bytes;
}

}  // namespace

FUZZ_TARGET(HostRequest, input) {
    static Host host;
    host.reset();
    const KeyPair& keys = host.ledger.keys().box;
    RequestReader raw;
    raw.add(input);
    OpenedRequest request;
    require(raw.next(keys, host.folder.path(), &request) != RequestReader::Result::Request,
            "what nobody sealed is no request");

    // The same frames, each sealed and signed by a terminal.
    FrameReader frames;
    frames.add(input);
    Frame frame;
    for (int i = 0; i < 8 && frames.next(&frame) == FrameReader::Result::Complete; ++i) {
        const SecureBytes fields(frame.sealed.cbegin(), frame.sealed.cend());
        const auto sealed = sealRequest(frame.number, keys.publicKey, fields, keys.publicKey, host.terminal);
        require(sealed.has_value(), "a request is sealed");
        const QByteArray bytes = encodeFrame({FrameKind::Request, frame.number, *sealed});
        RequestReader reader;
        reader.add(QByteArrayView(bytes).chopped(1));
        require(reader.next(keys, host.folder.path(), &request) == RequestReader::Result::Incomplete,
                "a frame comes whole");
        reader.add(QByteArrayView(bytes).last(1));
        const bool isRequest =
            reader.next(keys, host.folder.path(), &request) == RequestReader::Result::Request;
        const auto parsed = Fields::parse(fields);
        require(isRequest == (parsed && parsed->text(kTerminalField) == kEnrolled),
                "an enrolled terminal may ask");
        require(isRequest == reader.fault().isEmpty(), "a fault has words");
        if (!isRequest) continue;
        require(request.number == frame.number && request.fields == fields && reader.terminal() == kEnrolled,
                "a request opens to what was sealed");

        qint64 charged = 0;
        const SecureBytes first = answer(host, request, &charged);
        require(answer(host, request, &charged) == first && charged == 0,
                "asked again, it is answered as before");
    }
}
