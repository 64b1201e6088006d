#include <sqlite3.h>

#include <QTemporaryDir>
#include <QtEndian>

#include "fuzz/Target.h"
#include "platform/termdev/DemoCards.h"
#include "rovana-cardhost/Ledger.h"

using namespace cardhost;
using namespace platform::message;
using fuzz::require;

namespace {

/// A host with the demonstration's cards, as new for every input.
class Host {
  public:
    Host() : ledger(folder_.path(), makeKeys()) {
        for (const auto& card : platform::termdev::demoCards()) {
            if (card.isKnown) ledger.putCard(track3(card), card.password, card.balance, card.limit);
        }
        require(sqlite3_open(QFile::encodeName(folder_.filePath(QStringLiteral("ledger.db"))).constData(),
                             &file_) == SQLITE_OK,
                "there is a ledger");
        sqlite3_exec(file_, "CREATE TABLE card_before AS SELECT * FROM card", nullptr, nullptr, nullptr);
    }
    ~Host() { sqlite3_close(file_); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    void reset() {
        require(sqlite3_exec(
                    file_,
                    "BEGIN; DELETE FROM payment; DELETE FROM exchange; UPDATE card SET balance = (SELECT "
                    "balance FROM card_before WHERE card_before.id = card.id); COMMIT",
                    nullptr, nullptr, nullptr) == SQLITE_OK,
                "the ledger is emptied");
    }

    qint64 money() {
        qint64 sum = 0;
        for (const CardState& card : ledger.cards()) sum += card.balance;
        return sum;
    }

  private:
    Keys makeKeys() {
        QString error;
        const std::optional<Keys> keys = openKeys(folder_.path(), &error);
        require(keys.has_value(), "there are keys");
        return *keys;
    }

    QTemporaryDir folder_;
    sqlite3* file_ = nullptr;

  public:
    Ledger ledger;
};

/// The host's answer, checked. What it has charged is `charged` in won.
platform::SecureBytes answer(Host& host, const OpenedRequest& request, qint64* charged) {
    const qint64 before = host.money();
    const platform::SecureBytes bytes = host.ledger.answer(request);
    *charged = before - host.money();
    const std::optional<Fields> reply = Fields::parse(bytes);
    require(reply && reply->has(kResponseCodeField) && reply->has(kResponseTextField),
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
    static const PublicKey replyKey = host.ledger.keys().box.publicKey;
    host.reset();
    FrameReader reader;
    reader.add(input);
    Frame frame;
    for (int i = 0; i < 8 && reader.next(&frame) == FrameReader::Result::Complete; ++i) {
        require(!openRequest(frame.sealed, host.ledger.keys().box), "what nobody sealed does not open");
        // The same as if it had been sealed: number and reply key, what stands between, and the fields.
        QByteArray plain = frame.sealed;
        QByteArray sealed(plain.size() + qsizetype(crypto_box_SEALBYTES), Qt::Uninitialized);
        crypto_box_seal(reinterpret_cast<unsigned char*>(sealed.data()),
                        reinterpret_cast<const unsigned char*>(plain.constData()), size_t(plain.size()),
                        host.ledger.keys().box.publicKey.data());
        if (const auto opened = openRequest(sealed, host.ledger.keys().box)) {
            const auto fields = QByteArrayView(opened->fields.data(), qsizetype(opened->fields.size()));
            require(plain.startsWith(QByteArrayView(opened->number)) && plain.endsWith(fields),
                    "a request opens to what was sealed");
        }

        OpenedRequest request;
        request.number = frame.number;
        request.replyKey = replyKey;
        request.fields.assign(plain.begin(), plain.end());
        qint64 charged = 0;
        const platform::SecureBytes first = answer(host, request, &charged);
        require(answer(host, request, &charged) == first && charged == 0,
                "asked again, it is answered as before");
        if (!Fields::parse(request.fields)) continue;
        FieldWriter other;
        other.add(kTerminalField, u"other");
        request.fields = other.bytes();
        const auto refused = Fields::parse(answer(host, request, &charged));
        require(charged == 0 && refused->text(kResponseCodeField) == kNumberReused.code,
                "a number is for one request");
    }
}
