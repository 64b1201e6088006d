#include "platform/message/Component.h"

#include <QDate>
#include <QIODevice>
#include <QMetaObject>
#include <QTimer>
#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "platform/Address.h"
#include "platform/Digits.h"
#include "platform/Trace.h"
#include "platform/message/SavedValues.h"

namespace platform::message {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

constexpr qsizetype kLongestText = 100;
constexpr qsizetype kLongestCardData = 104;
constexpr qsizetype kPasswordLength = 4;
constexpr qsizetype kMostDigits = 18;
constexpr int kKindValue = 6;  // place of the message kind among the header values

std::chrono::milliseconds timeOutUnit = 1s;
Component::LastExchange last = Component::LastExchange::None;

QStringView text(const Argument& argument) {
    return std::get<QStringView>(argument);
}

bool isAmount(QStringView text) {
    const QStringView digits = text.startsWith(u'-') ? text.sliced(1) : text;
    return digits.size() <= kMostDigits && areDigits(digits);
}

bool isCardData(QStringView text) {
    return !text.isEmpty() && text.size() <= kLongestCardData;
}

bool isPassword(QStringView text) {
    return text.size() == kPasswordLength;
}

bool isTime(QStringView text) {
    return text.size() == 6 && areDigits(text);
}

bool isDate(QStringView text) {
    return text.size() == 8 && areDigits(text) && QDate::fromString(text, u"yyyyMMdd").isValid();
}

}  // namespace

struct Component::Operation {
    int id;
    const char* parameters;  ///< One letter each: t text, i integer, o text to be written.
    Status (Component::*run)(Arguments);
};

struct Component::Request {
    MessageNumber number{};
    KeyPair replyKey;
    PublicKey hostKey{};
    QString kind;
    QByteArray frame;
};

struct Component::Exchange {
    std::unique_ptr<Request> request;  ///< Null once the exchange has failed to start.
    std::unique_ptr<Connection> connection;
    QTimer* timer = nullptr;
    FrameReader reader;
    Stage stage = Stage::Starting;
    bool isHanded = false;  ///< To the socket, for the system to take.
    bool hasLeft = false;   ///< The system has taken some of the request.

    ~Exchange() { hangUp(); }

    /// Drops the connection and what it still holds. The timer goes later, since it is its signal that this
    /// may be called from.
    void hangUp() {
        if (timer) {
            timer->stop();
            timer->disconnect();
            timer->deleteLater();
            timer = nullptr;
        }
        connection.reset();
    }
};

const Component::Operation* Component::findOperation(int dispatchId) {
    // The ids between them the card network does not offer.
    static constexpr Operation kOperations[] = {
        {1, "ttttttt", &Component::headerReq}, {2, "ttttttttttt", &Component::paymentReq},
        {3, "", &Component::setPreTradeRep},   {4, "tttt", &Component::balanceReq},
        {6, "tt", &Component::setSummaryReq},  {10, "", &Component::recvHeader},
        {11, "", &Component::recvPayment},     {12, "", &Component::recvPreTrade},
        {14, "", &Component::recvBalance},     {16, "", &Component::recvSummary},
        {22, "io", &Component::getRecvField},  {24, "to", &Component::getSavedValue},
        {25, "tiii", &Component::commun},      {-552, "", &Component::aboutBox},
    };
    const auto* const found = std::ranges::find(kOperations, dispatchId, &Operation::id);
    return found == std::end(kOperations) ? nullptr : found;
}

Component::Component() = default;

Component::~Component() {
    if (exchange_ && last == LastExchange::UnderWay) last = LastExchange::Failed;
}

Component::LastExchange Component::lastExchange() {
    return last;
}

void Component::setTimeOutUnit(std::chrono::milliseconds unit) {
    timeOutUnit = unit;
}

std::optional<MessageNumber> Component::paymentNumber() const {
    if (!request_ || (request_->kind != kCardPayment && request_->kind != kCashPayment)) return std::nullopt;
    return request_->number;
}

Status Component::invoke(int dispatchId, Arguments arguments) {
    const auto letter = [](const Argument& argument) { return "tio"[argument.index()]; };
    for (const Argument& argument : arguments) {
        if (QString* const* out = std::get_if<QString*>(&argument); out && *out) (*out)->clear();
    }
    const Operation* operation = findOperation(dispatchId);
    if (operation == nullptr) return kBadInput;
    if (!std::ranges::equal(arguments, std::string_view(operation->parameters), {}, letter)) return kBadInput;
    const bool hasNull = std::ranges::any_of(arguments, [](const Argument& argument) {
        QString* const* out = std::get_if<QString*>(&argument);
        return out && *out == nullptr;
    });
    return hasNull ? kBadInput : (this->*operation->run)(arguments);
}

// --- requests ----------------------------------------------------------------------------------------------

Status Component::headerReq(Arguments arguments) {
    if (exchange_) return kBadInput;
    // From here on nothing of the exchange before counts any more.
    reply_.reset();
    header_.reset();
    request_.reset();
    unsealed_.reset();
    requestStatus_ = kBadInput;

    static constexpr std::array kKinds{kCardPayment, kCashPayment, kBalanceInquiry, kPreviousTransaction,
                                       kSummary};
    if (std::ranges::find(kKinds, text(arguments[kKindValue])) == kKinds.end()) return kBadInput;
    FieldWriter header;
    quint16 number = 1;
    for (const Argument& argument : arguments) {
        if (text(argument).size() > kLongestText) return kBadInput;
        header.add(number++, text(argument));
    }
    QString terminal;
    if (const Status status = readSavedValue(kTerminalKey, &terminal); status != kDone) return status;
    header.add(kTerminalField, terminal);
    header_ = std::move(header);
    kind_ = text(arguments[kKindValue]).toString();
    return kDone;
}

bool Component::isKind(std::initializer_list<QStringView> kinds) const {
    return !exchange_ && header_ && std::ranges::find(kinds, QStringView(kind_)) != kinds.end();
}

Status Component::paymentReq(Arguments arguments) {
    request_.reset();
    requestStatus_ = kBadInput;
    if (!isKind({kCardPayment, kCashPayment})) return kBadInput;
    const auto parameter = [&](std::size_t number) { return text(arguments[number - 1]); };
    const QStringView flag = parameter(9);
    if (parameter(1).size() > kLongestText || parameter(2).size() > kLongestText ||
        !isCardData(parameter(3)) || !isPassword(parameter(4)) || parameter(5).size() > kLongestText ||
        !isAmount(parameter(6)) || !isAmount(parameter(7)) || !isAmount(parameter(8)) ||
        (flag != u"0" && flag != u"1") || !isAmount(parameter(10)) || !isAmount(parameter(11))) {
        return kBadInput;
    }
    FieldWriter body = *header_;
    quint16 field = kFirstParameterField;
    for (const Argument& argument : arguments) body.add(field++, text(argument));
    return requestStatus_ = seal(body);
}

Status Component::balanceReq(Arguments arguments) {
    request_.reset();
    requestStatus_ = kBadInput;
    if (!isKind({kBalanceInquiry})) return kBadInput;
    if (!isTime(text(arguments[0])) || !isCardData(text(arguments[1])) || !isPassword(text(arguments[2])) ||
        text(arguments[3]).size() > kLongestText) {
        return kBadInput;
    }
    FieldWriter body = *header_;
    quint16 field = kFirstParameterField;
    for (const Argument& argument : arguments) body.add(field++, text(argument));
    return requestStatus_ = seal(body);
}

Status Component::setPreTradeRep(Arguments) {
    unsealed_.reset();
    if (!isKind({kPreviousTransaction})) return kBadInput;
    unsealed_ = *header_;
    if (const auto asked = std::exchange(asked_, std::nullopt)) {
        unsealed_->add(kAskedNumberField, toText(*asked));
    }
    return kDone;
}

Status Component::setSummaryReq(Arguments arguments) {
    unsealed_.reset();
    if (!isKind({kSummary}) || !isTime(text(arguments[0])) || !isDate(text(arguments[1]))) return kBadInput;
    FieldWriter body = *header_;
    quint16 field = kFirstParameterField;
    for (const Argument& argument : arguments) body.add(field++, text(argument));
    unsealed_ = std::move(body);
    return kDone;
}

Status Component::seal(const FieldWriter& body) {
    auto request = std::make_unique<Request>();
    if (const Status status = readHostKey(&request->hostKey); status != kDone) return status;
    if (const Status status = startCipher(); status != kDone) return status;
    SigningKey terminal;
    if (const Status status = readSigningKey(&terminal); status != kDone) {
        trace(u"no request is made: the terminal's own key is missing, see \"rovanactl check\"");
        return status;
    }
    if (const Status status = makeKeyPair(&request->replyKey); status != kDone) return status;
    request->kind = kind_;
    request->number = makeMessageNumber();
    const std::optional<QByteArray> sealed =
        sealRequest(request->number, request->replyKey.publicKey, body.bytes(), request->hostKey, terminal);
    if (!sealed) return kPublicKeyFailed;
    request->frame = encodeFrame({FrameKind::Request, request->number, *sealed});
    if (request->frame.isEmpty()) return kBadInput;
    request_ = std::move(request);
    return kDone;
}

// --- replies -----------------------------------------------------------------------------------------------

Status Component::replyIs(std::initializer_list<QStringView> kinds) const {
    return reply_ && std::ranges::find(kinds, QStringView(replyKind_)) != kinds.end() ? kDone : kBadInput;
}

Status Component::recvHeader(Arguments) {
    return reply_ ? kDone : kBadInput;
}

Status Component::recvPayment(Arguments) {
    return replyIs({kCardPayment, kCashPayment});
}

Status Component::recvPreTrade(Arguments) {
    return replyIs({kPreviousTransaction});
}

Status Component::recvBalance(Arguments) {
    return replyIs({kBalanceInquiry});
}

Status Component::recvSummary(Arguments) {
    return replyIs({kSummary});
}

Status Component::getRecvField(Arguments arguments) {
    const auto number = quint16(std::get<qint16>(arguments[0]));
    if (!reply_ || !reply_->has(number)) return kBadInput;
    *std::get<QString*>(arguments[1]) = reply_->text(number);
    return kDone;
}

Status Component::getSavedValue(Arguments arguments) {
    return readSavedValue(text(arguments[0]), std::get<QString*>(arguments[1]));
}

Status Component::aboutBox(Arguments) {
    return kDone;  // There is no such box: a terminal shows nothing of its parts.
}

// --- the exchange ------------------------------------------------------------------------------------------

Status Component::commun(Arguments arguments) {
    if (exchange_) return kLinkFailed;
    reply_.reset();
    hasSent_ = false;
    exchange_ = std::make_shared<Exchange>();
    last = LastExchange::UnderWay;
    // A port above 32,767 arrives as a negative integer of 16 bits.
    const Status status =
        start(text(arguments[0]), quint16(std::get<qint16>(arguments[1])), std::get<qint16>(arguments[2]));
    if (status != kDone) hangUp();
    QMetaObject::invokeMethod(
        this,
        [this, status] {
            if (status != kDone) {
                failWith(status);
            } else if (exchange_ && exchange_->connection) {
                reach(Stage::Communicating);
            }
        },
        Qt::QueuedConnection);
    return status;
}

Status Component::start(QStringView host, quint16 port, int timeOut) {
    if (unsealed_) {
        requestStatus_ = seal(*unsealed_);
        unsealed_.reset();
    }
    exchange_->request = std::exchange(request_, nullptr);
    const Status ready = std::exchange(requestStatus_, kBadInput);
    header_.reset();
    if (ready != kDone) return ready;
    const std::optional<QString> address = parseAddress(host);
    if (timeOut <= 0 || port == 0 || !address) return kBadInput;

    exchange_->connection = makeConnection(kFrameLimit);
    if (!exchange_->connection) return kLinkFailed;
    QIODevice* const device = exchange_->connection->device();
    device->setParent(this);
    connect(device, &QIODevice::bytesWritten, this, &Component::requestLeft);
    connect(device, &QIODevice::readyRead, this, &Component::readReply);
    const std::optional<Connection::Fault> fault = exchange_->connection->open(
        *address, port, [this] { sendRequest(); }, [this](Connection::Fault of) { connectionLost(of); });
    if (fault) return *fault == Connection::Fault::NoSocket ? kLinkFailed : kConnectionFailed;

    auto* const timer = exchange_->timer = new QTimer(this);
    timer->setSingleShot(true);
    connect(timer, &QTimer::timeout, this, [this] { breakOff(u"the card host did not answer in time"); });
    timer->start(timeOut * timeOutUnit);
    return kDone;
}

// The payment journal rests on hasSent(): a payment that has not left is released, any other is asked about.
// Nothing is handed to the socket before it is connected, so nothing waits in Qt's buffer for a connection
// that comes about when nobody reckons with it any more. From the handing over on the event loop may write at
// any moment, and the answer is that the request may have left. Qt writes with single calls, each of which
// fails as a whole or takes some bytes, and bytesWritten follows every one that took some before anything
// else is done with the socket. An exchange that is given up without that signal has therefore sent nothing,
// and will not: hangUp() throws Qt's buffer away.
void Component::sendRequest() {
    exchange_->isHanded = true;
    hasSent_ = true;
    // A request is one frame, which nothing follows before the reply.
    exchange_->connection->sendWithoutDelay();
    exchange_->connection->device()->write(exchange_->request->frame);
}

void Component::requestLeft() {
    exchange_->hasLeft = true;
    if (exchange_->connection->device()->bytesToWrite() == 0) reach(Stage::Sent);
}

void Component::hangUp() {
    exchange_->hangUp();
    if (!exchange_->hasLeft) hasSent_ = false;
}

void Component::readReply() {
    exchange_->reader.add(exchange_->connection->device()->readAll());
    for (;;) {
        Frame frame;
        const FrameReader::Result result = exchange_->reader.next(&frame);
        if (result == FrameReader::Result::Incomplete) return;
        if (result != FrameReader::Result::Complete) return breakOff(describe(result));
        if (frame.kind != FrameKind::Reply) return breakOff(u"the card host sent no reply");
        if (frame.number == exchange_->request->number) return takeReply(frame);
        trace(u"a reply to another request is ignored");
    }
}

void Component::takeReply(const Frame& frame) {
    const Request& request = *exchange_->request;
    std::optional<SecureBytes> opened =
        openReply(frame.sealed, request.number, request.hostKey, request.replyKey.secretKey);
    if (!opened) return breakOff(u"the reply is not the card host's");
    std::optional<Fields> fields = Fields::parse(std::move(*opened));
    if (!fields || fields->text(kMessageTypeField) != kReplyType ||
        fields->text(kMessageKindField) != request.kind || !fields->has(kResponseCodeField)) {
        return breakOff(u"the reply does not fit the request");
    }

    last = LastExchange::Answered;
    hangUp();
    if (!reach(Stage::Sent)) return;
    reply_ = std::move(fields);
    replyKind_ = exchange_->request->kind;
    const std::weak_ptr<Exchange> current = exchange_;
    Q_EMIT receiving();
    if (!current.expired()) endExchange();
}

void Component::connectionLost(Connection::Fault fault) {
    // Qt gives up connecting after 30 seconds by itself; how long to wait is for the exchange's own timer.
    if (fault == Connection::Fault::TimedOut) return;
    const std::weak_ptr<Exchange> current = exchange_;
    if (!exchange_->isHanded) {
        hangUp();
        if (reach(Stage::Communicating)) failWith(kConnectionFailed);
        return;
    }
    readReply();
    if (!current.expired() && exchange_->connection) breakOff(u"the card host closed the connection");
}

/// Emits the signals that lead to `stage`, as far as they are due. False when a receiver has let the
/// exchange, and perhaps this object, go.
bool Component::reach(Stage stage) {
    const std::weak_ptr<Exchange> current = exchange_;
    while (exchange_->stage < stage) {
        if (exchange_->stage == Stage::Starting) {
            exchange_->stage = Stage::Communicating;
            Q_EMIT communicating();
        } else {
            exchange_->stage = Stage::Sent;
            Q_EMIT messageSent();
        }
        if (current.expired()) return false;
    }
    return true;
}

void Component::breakOff(QStringView reason) {
    trace(reason);
    last = LastExchange::Failed;
    hangUp();
    if (!reach(Stage::Communicating)) return;
    const std::weak_ptr<Exchange> current = exchange_;
    Q_EMIT errorOccurred();
    if (!current.expired()) endExchange();
}

void Component::failWith(Status status) {
    last = LastExchange::Failed;
    const std::weak_ptr<Exchange> current = exchange_;
    Q_EMIT ksnetError(status);
    if (!current.expired()) endExchange();
}

void Component::endExchange() {
    exchange_.reset();
    Q_EMIT communicationEnded();
}

}  // namespace platform::message
