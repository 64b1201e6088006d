#include "rovana-cardhost/Ledger.h"

#include <QDateTime>
#include <QStringBuilder>
#include <array>
#include <cstdlib>

#include "platform/CardNumber.h"
#include "platform/Clock.h"
#include "platform/Digits.h"
#include "platform/Trace.h"

namespace cardhost {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::message;
using platform::SecureBytes;
using platform::SqliteError;
using platform::SqliteStatement;
using platform::SqliteTransaction;

constexpr char kTables[] = R"(
CREATE TABLE IF NOT EXISTS card (
    id INTEGER PRIMARY KEY,
    track BLOB NOT NULL UNIQUE,      -- keyed digest of the card data
    password TEXT NOT NULL,          -- hash of the keyed digest
    number TEXT NOT NULL,            -- masked
    balance INTEGER NOT NULL,
    payment_limit INTEGER NOT NULL,
    wrong_passwords INTEGER NOT NULL DEFAULT 0  -- in a row
);
CREATE TABLE IF NOT EXISTS exchange (
    id INTEGER PRIMARY KEY,
    message_number BLOB NOT NULL UNIQUE,
    request BLOB NOT NULL,           -- keyed digest of the request's fields
    received TEXT NOT NULL,          -- local date and time
    terminal TEXT NOT NULL,
    kind TEXT NOT NULL,
    code TEXT NOT NULL,
    reply BLOB NOT NULL
);
CREATE TABLE IF NOT EXISTS payment (
    id INTEGER PRIMARY KEY,
    exchange INTEGER NOT NULL REFERENCES exchange,
    card INTEGER NOT NULL REFERENCES card,
    terminal TEXT NOT NULL,
    day TEXT NOT NULL,               -- yyyyMMdd
    kind TEXT NOT NULL,
    supply INTEGER NOT NULL,
    vat INTEGER NOT NULL,
    deposit INTEGER NOT NULL,
    recovery INTEGER NOT NULL,
    amount INTEGER NOT NULL,
    fee INTEGER NOT NULL,
    transferred INTEGER NOT NULL,
    remaining INTEGER NOT NULL       -- the account's balance afterwards
);
CREATE INDEX IF NOT EXISTS payment_of_day ON payment (terminal, day);
)";

constexpr qsizetype kLongestCardData = 104;

/// Parameter n of the request operation.
quint16 parameter(int number) {
    return quint16(kFirstParameterField + number - 1);
}

QByteArrayView view(const SecureBytes& bytes) {
    return {bytes.data(), qsizetype(bytes.size())};
}

/// The amount of a field: digits alone, up to kLargestAmount.
std::optional<qint64> amount(const Fields& fields, quint16 number) {
    const QString digits = fields.text(number);
    if (!platform::areDigits(digits)) return std::nullopt;
    bool isNumber = false;
    const qint64 value = digits.toLongLong(&isNumber);
    if (!isNumber || value > kLargestAmount) return std::nullopt;
    return value;
}

/// Whether the request has every field from the first parameter to that one.
bool hasParameters(const Fields& fields, int last) {
    for (int number = 1; number <= last; ++number) {
        if (!fields.has(parameter(number))) return false;
    }
    return true;
}

bool hasHeader(const Fields& fields) {
    for (quint16 field = 1; field <= kTerminalField; ++field) {
        if (!fields.has(field)) return false;
    }
    return true;
}

void addBalance(FieldWriter& reply, quint16 field, qint64 balance) {
    reply.add(kBalanceSignField, balance < 0 ? u"1" : u"0");
    reply.add(field, QString::number(std::abs(balance)));
}

void addAmount(FieldWriter& reply, quint16 field, qint64 amount) {
    reply.add(field, QString::number(amount));
}

void addHeader(FieldWriter& reply, const Fields& request) {
    for (quint16 field = 1; field <= kTerminalField; ++field) {
        reply.add(field, field == kMessageTypeField ? kReplyType.toString() : request.text(field));
    }
}

QString transactionNumber(qint64 payment) {
    return u"%1"_s.arg(payment, 12, 10, QChar(u'0'));
}

/// The host's own number of an exchange; 0 for a reply about none.
QString identification(qint64 exchange) {
    return u"JB%1"_s.arg(exchange, 10, 10, QChar(u'0'));
}

void addResponse(FieldWriter& reply, const Response& response, qint64 exchange) {
    reply.add(kResponseCodeField, response.code);
    reply.add(kResponseTextField, response.text);
    reply.add(kIdentificationField, identification(exchange));
}

/// The response of that code, which a payment was answered with.
Response responseOf(QStringView code) {
    for (const Response& response : {kApproved, kUnknownCard, kWrongPassword, kOverBalance, kOverLimit,
                                     kBadAmount, kCardLocked, kRefused, kNeverReceived}) {
        if (response.code == code) return response;
    }
    return kBadMessage;
}

SecureBytes utf8(QStringView text) {
    FieldWriter writer;
    writer.add(0, text);
    return SecureBytes(writer.bytes().begin() + 4, writer.bytes().end());
}

}  // namespace

Ledger::Ledger(const QString& folder, Keys keys)
    : keys_(std::move(keys)), file_(folder + u"/ledger.db"_s, platform::SqliteFile::Mode::Create) {
    // An approval that was sent must survive anything. A log that has grown all the same, for example while
    // somebody else read the file, gives its room back.
    file_.run(
        "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL; PRAGMA foreign_keys=ON; "
        "PRAGMA journal_size_limit=4194304");
    file_.run(kTables);
    // A ledger of before wrong passwords were counted.
    if (!file_.statement("SELECT 1 FROM pragma_table_info('card') WHERE name = 'wrong_passwords'").step())
        file_.run("ALTER TABLE card ADD COLUMN wrong_passwords INTEGER NOT NULL DEFAULT 0");
}

QByteArray Ledger::digest(char use, QByteArrayView bytes) const {
    QByteArray digest(crypto_generichash_BYTES, Qt::Uninitialized);
    crypto_generichash_state state;
    crypto_generichash_init(&state, keys_.digestKey.data(), keys_.digestKey.size(),
                            std::size_t(digest.size()));
    crypto_generichash_update(&state, reinterpret_cast<const unsigned char*>(&use), 1);
    crypto_generichash_update(&state, reinterpret_cast<const unsigned char*>(bytes.data()),
                              std::size_t(bytes.size()));
    crypto_generichash_final(&state, reinterpret_cast<unsigned char*>(digest.data()),
                             std::size_t(digest.size()));
    sodium_memzero(&state, sizeof state);
    return digest;
}

void Ledger::putCard(QStringView track3, QStringView password, qint64 balance, qint64 limit) {
    // A terminal sends what follows the start sentinel.
    const QStringView cardData = track3.mid(1, kLongestCardData);
    const QByteArray secret = digest('p', view(utf8(password)));
    std::array<char, crypto_pwhash_STRBYTES> hash{};
    // Four digits are tried out in no time however slow the hash; what protects them is the key of the
    // digest.
    if (crypto_pwhash_str(hash.data(), secret.constData(), std::size_t(secret.size()),
                          crypto_pwhash_OPSLIMIT_MIN, crypto_pwhash_MEMLIMIT_MIN) != 0) {
        throw std::bad_alloc();
    }
    SqliteStatement put = file_.statement(
        "INSERT INTO card (track, password, number, balance, payment_limit) VALUES (?, ?, ?, ?, ?) "
        "ON CONFLICT (track) DO UPDATE SET password = excluded.password, balance = excluded.balance, "
        "payment_limit = excluded.payment_limit, wrong_passwords = 0");
    put.bind(digest('t', view(utf8(cardData))))
        .bind(QString::fromLatin1(hash.data()))
        // The number of a track 3 follows its two digits of format.
        .bind(platform::maskedCardNumber(cardData.mid(2)))
        .bind(balance)
        .bind(limit)
        .step();
}

bool Ledger::hasCard(QStringView track3) {
    return file_.statement("SELECT 1 FROM card WHERE track = ?")
        .bind(digest('t', view(utf8(track3.mid(1, kLongestCardData)))))
        .step();
}

void Ledger::unlockCard(QStringView track3) {
    file_.statement("UPDATE card SET wrong_passwords = 0 WHERE track = ? AND wrong_passwords > 0")
        .bind(digest('t', view(utf8(track3.mid(1, kLongestCardData)))))
        .step();
}

QList<CardState> Ledger::cards() {
    QList<CardState> cards;
    SqliteStatement select =
        file_.statement("SELECT number, balance, payment_limit, wrong_passwords FROM card ORDER BY id");
    while (select.step()) {
        cards.append(
            {select.text(0), select.integer(1), select.integer(2), select.integer(3) >= kMostWrongPasswords});
    }
    return cards;
}

qint64 Ledger::nextId(const char* sql) {
    SqliteStatement next = file_.statement(sql);
    next.step();
    return next.integer(0);
}

std::optional<SecureBytes> Ledger::answerAgain(const OpenedRequest& request, const QByteArray& digest,
                                               FieldWriter& refusal) {
    SqliteStatement known =
        file_.statement("SELECT request, reply, id FROM exchange WHERE message_number = ?");
    if (!known.bind(QByteArrayView(request.number)).step()) return std::nullopt;
    if (known.bytes(0) == digest) {
        const QByteArray before = known.bytes(1);
        return SecureBytes(before.begin(), before.end());
    }
    addResponse(refusal, kNumberReused, known.integer(2));
    return refusal.bytes();
}

SecureBytes Ledger::answer(const OpenedRequest& request, Manner manner) {
    const std::optional<Fields> fields = Fields::parse(request.fields);
    FieldWriter reply;
    if (!fields) {
        addResponse(reply, kBadMessage, 0);
        return reply.bytes();
    }
    addHeader(reply, *fields);
    FieldWriter failure = reply;
    try {
        SqliteTransaction transaction(file_);
        const QByteArray requestDigest = digest('r', view(request.fields));
        if (const auto again = answerAgain(request, requestDigest, failure)) return *again;

        const qint64 exchange = nextId("SELECT coalesce(max(id), 0) + 1 FROM exchange");
        Call call{*fields,
                  fields->text(kTerminalField),
                  fields->text(kMessageKindField),
                  exchange,
                  exchange,
                  manner,
                  reply};
        // Entered first, so that a payment can refer to it; code and reply follow.
        file_.statement("INSERT INTO exchange VALUES (?, ?, ?, ?, ?, ?, '', '')")
            .bind(call.exchange)
            .bind(QByteArrayView(request.number))
            .bind(requestDigest)
            .bind(platform::clock::now().toString(u"yyyy-MM-dd HH:mm:ss"))
            .bind(call.terminal)
            .bind(call.kind)
            .step();
        const Response response = decide(call);
        addResponse(reply, response, call.subject);
        file_.statement("UPDATE exchange SET code = ?, reply = ? WHERE id = ?")
            .bind(response.code.toString())
            .bind(view(reply.bytes()))
            .bind(call.exchange)
            .step();
        transaction.commit();
        return reply.bytes();
    } catch (const SqliteError& error) {
        platform::trace(u"the ledger failed: "_s + QString::fromUtf8(error.what()));
        addResponse(failure, kLedgerFailed, 0);
        return failure.bytes();
    }
}

Response Ledger::decide(Call& call) {
    if (!hasHeader(call.fields) || call.fields.text(kMessageTypeField) != kRequestType ||
        call.terminal.isEmpty())
        return kBadMessage;
    if (call.kind == kCardPayment || call.kind == kCashPayment) return pay(call);
    if (call.kind == kBalanceInquiry) return inquire(call);
    if (call.kind == kPreviousTransaction) return tellPrevious(call);
    if (call.kind == kSummary) return sum(call);
    return kBadMessage;
}

Response Ledger::findCard(QByteArrayView cardData, QByteArrayView password, Card* card) {
    SqliteStatement find = file_.statement(
        "SELECT id, password, balance, payment_limit, wrong_passwords FROM card WHERE track = ?");
    if (!find.bind(digest('t', cardData)).step()) return kUnknownCard;
    const qint64 wrong = find.integer(4);
    if (wrong >= kMostWrongPasswords) return kCardLocked;
    const QByteArray hash = find.bytes(1);
    const QByteArray secret = digest('p', password);
    const bool isRight =
        crypto_pwhash_str_verify(hash.constData(), secret.constData(), std::size_t(secret.size())) == 0;
    *card = {find.integer(0), find.integer(2), find.integer(3)};
    if (!isRight || wrong > 0) {
        file_.statement("UPDATE card SET wrong_passwords = ? WHERE id = ?")
            .bind(isRight ? 0 : wrong + 1)
            .bind(card->id)
            .step();
    }
    return isRight ? kApproved : kWrongPassword;
}

Response Ledger::pay(Call& call) {
    constexpr int kParameters = 11;
    const QString returned = call.fields.text(parameter(9));
    if (!hasParameters(call.fields, kParameters) || (returned != u"0" && returned != u"1"))
        return kBadMessage;
    Card card{};
    const Response found =
        findCard(*call.fields.bytes(parameter(3)), *call.fields.bytes(parameter(4)), &card);
    if (found.code != kApproved.code) return found;

    const auto supply = amount(call.fields, parameter(6));
    const auto vat = amount(call.fields, parameter(7));
    const auto deposit = amount(call.fields, parameter(8));
    const auto recovery = amount(call.fields, parameter(10));
    const auto settled = amount(call.fields, parameter(11));
    if (!supply || !vat || !deposit || !recovery || !settled || *settled <= 0) return kBadAmount;
    const bool isCash = call.kind == kCashPayment;
    // Cash changes hands on the spot; it is entered without moving the account.
    if (!isCash && *settled > card.limit) return kOverLimit;
    if (!isCash && *settled > card.balance) return kOverBalance;
    if (call.manner == Manner::Refusing) return kRefused;

    const qint64 fee = isCash ? 0 : feeOf(*settled);
    const qint64 transferred = isCash ? 0 : *settled - fee;
    const qint64 remaining = isCash ? card.balance : card.balance - *settled;
    file_.statement("UPDATE card SET balance = ? WHERE id = ?").bind(remaining).bind(card.id).step();
    const qint64 payment = nextId("SELECT coalesce(max(id), 0) + 1 FROM payment");
    file_.statement("INSERT INTO payment VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")
        .bind(payment)
        .bind(call.exchange)
        .bind(card.id)
        .bind(call.terminal)
        .bind(platform::clock::now().toString(u"yyyyMMdd"))
        .bind(call.kind)
        .bind(*supply)
        .bind(*vat)
        .bind(*deposit)
        .bind(*recovery)
        .bind(*settled)
        .bind(fee)
        .bind(transferred)
        .bind(remaining)
        .step();
    call.reply.add(kTransactionField, transactionNumber(payment));
    addAmount(call.reply, kAmountField, *settled);
    addAmount(call.reply, kFeeField, fee);
    addAmount(call.reply, kDepositedField, transferred);
    addBalance(call.reply, kRemainingField, remaining);
    return kApproved;
}

Response Ledger::inquire(Call& call) {
    constexpr int kParameters = 4;
    if (!hasParameters(call.fields, kParameters)) return kBadMessage;
    Card card{};
    const Response found =
        findCard(*call.fields.bytes(parameter(2)), *call.fields.bytes(parameter(3)), &card);
    if (found.code != kApproved.code) return found;
    if (call.manner == Manner::Refusing) return kRefused;
    addBalance(call.reply, kBalanceField, card.balance);
    addAmount(call.reply, kLimitField, card.limit);
    return kApproved;
}

Response Ledger::tellPrevious(Call& call) {
    if (call.fields.has(kAskedNumberField)) {
        const std::optional<MessageNumber> asked = parseMessageNumber(call.fields.text(kAskedNumberField));
        if (!asked) return kBadMessage;
        return call.manner == Manner::Refusing ? kRefused : tellOf(call, *asked);
    }
    SqliteStatement last = file_.statement(
        "SELECT id, exchange, amount, fee, transferred, remaining FROM payment WHERE terminal = ? "
        "ORDER BY id DESC LIMIT 1");
    if (!last.bind(call.terminal).step()) return kNoPrevious;
    if (call.manner == Manner::Refusing) return kRefused;
    call.reply.add(kTransactionField, transactionNumber(last.integer(0)));
    call.subject = last.integer(1);
    addAmount(call.reply, kAmountField, last.integer(2));
    addAmount(call.reply, kFeeField, last.integer(3));
    addAmount(call.reply, kDepositedField, last.integer(4));
    addBalance(call.reply, kRemainingField, last.integer(5));
    return kApproved;
}

Response Ledger::tellOf(Call& call, const MessageNumber& number) {
    SqliteStatement asked =
        file_.statement("SELECT id, terminal, kind, code, reply FROM exchange WHERE message_number = ?");
    if (!asked.bind(QByteArrayView(number)).step()) return closeNumber(call, number);
    const QString kind = asked.text(2);
    // What others asked for is not told.
    if (asked.text(1) != call.terminal || (kind != kCardPayment && kind != kCashPayment && !kind.isEmpty())) {
        return kBadMessage;
    }
    call.subject = asked.integer(0);
    const QByteArray bytes = asked.bytes(4);
    const std::optional<Fields> first = Fields::parse(SecureBytes(bytes.begin(), bytes.end()));
    if (!first) return kBadMessage;
    for (const quint16 field :
         {kTransactionField, kAmountField, kFeeField, kDepositedField, kBalanceSignField, kRemainingField}) {
        if (first->has(field)) call.reply.add(field, first->text(field));
    }
    call.reply.add(kAnsweredNumberField, call.fields.text(kAskedNumberField));
    return responseOf(first->text(kResponseCodeField));
}

Response Ledger::closeNumber(Call& call, const MessageNumber& number) {
    // The terminal will be told that nothing was charged, so a late copy of the payment must not be: with
    // this entry its number is a known one, and no content has an empty digest.
    FieldWriter never;
    addResponse(never, kNeverReceived, call.exchange + 1);
    file_.statement("INSERT INTO exchange VALUES (?, ?, x'', ?, ?, '', ?, ?)")
        .bind(call.exchange + 1)
        .bind(QByteArrayView(number))
        .bind(platform::clock::now().toString(u"yyyy-MM-dd HH:mm:ss"))
        .bind(call.terminal)
        .bind(kNeverReceived.code.toString())
        .bind(view(never.bytes()))
        .step();
    call.subject = call.exchange + 1;
    call.reply.add(kAnsweredNumberField, call.fields.text(kAskedNumberField));
    return kNeverReceived;
}

Response Ledger::sum(Call& call) {
    const QString day = call.fields.text(parameter(2));
    if (!hasParameters(call.fields, 2) || !QDate::fromString(day, u"yyyyMMdd").isValid()) return kBadMessage;
    if (call.manner == Manner::Refusing) return kRefused;
    SqliteStatement totals = file_.statement(
        "SELECT count(*), coalesce(sum(supply), 0), coalesce(sum(vat), 0), coalesce(sum(deposit), 0), "
        "coalesce(sum(recovery), 0), coalesce(sum(amount), 0), coalesce(sum(fee), 0), "
        "coalesce(sum(transferred), 0) FROM payment WHERE terminal = ? AND day = ? AND kind = ?");
    totals.bind(call.terminal).bind(day).bind(kCardPayment.toString()).step();
    constexpr std::array kTotals{kTransferCountField, kSupplyTotalField, kVatTotalField, kDepositTotalField,
                                 kRecoveryTotalField, kAmountTotalField, kFeeTotalField, kTransferTotalField};
    for (std::size_t i = 0; i < kTotals.size(); ++i)
        addAmount(call.reply, kTotals[i], totals.integer(int(i)));
    addAmount(call.reply, kDepositedField, totals.integer(int(kTotals.size()) - 1));
    addAmount(call.reply, kListTotalField, totals.integer(0));
    list(call, day);
    return kApproved;
}

void Ledger::list(Call& call, const QString& day) {
    SqliteStatement payments = file_.statement(
        "SELECT payment.id, substr(received, 12, 2) || substr(received, 15, 2) || substr(received, 18, 2), "
        "amount FROM payment JOIN exchange ON exchange.id = payment.exchange "
        "WHERE payment.terminal = ? AND day = ? AND payment.kind = ? ORDER BY payment.id");
    payments.bind(call.terminal).bind(day).bind(kCardPayment.toString());
    QString lines;
    while (payments.step()) {
        const QString line = u"%1 %2 %3\n"_s.arg(transactionNumber(payments.integer(0)), payments.text(1))
                                 .arg(payments.integer(2));
        // Cut between two payments, the last ones going; every character is one byte.
        if (lines.size() + line.size() > kLongestList) break;
        lines += line;
    }
    call.reply.add(kListField, lines);
}

}  // namespace cardhost
