#include <malloc.h>
#include <netinet/in.h>
#include <sodium.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QDir>
#include <QEventLoop>
#include <QTemporaryDir>
#include <array>
#include <atomic>
#include <ctime>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Bench.h"
#include "Work.h"
#include "desk/demo/DemoCards.h"
#include "platform/Device.h"
#include "platform/message/Component.h"
#include "platform/message/Fields.h"
#include "platform/message/Frame.h"
#include "platform/message/SavedValues.h"
#include "platform/message/Seal.h"
#include "rovana-cardhost/HostSeal.h"

namespace bench {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::message;

constexpr int kExchangesARun = 200;
constexpr int kFirstPayments = 100;
constexpr int kAllPayments = 1000;

/// A socket that closes itself.
class Socket {
  public:
    explicit Socket(int handle) : handle_(handle) {}
    ~Socket() {
        if (handle_ >= 0) ::close(handle_);
    }
    Q_DISABLE_COPY_MOVE(Socket)

    int handle() const { return handle_; }
    bool send(QByteArrayView bytes) const {
        return ::send(handle_, bytes.data(), size_t(bytes.size()), MSG_NOSIGNAL) == bytes.size();
    }
    /// At least one byte; empty at the end.
    QByteArray receive() const {
        QByteArray bytes(4096, Qt::Uninitialized);
        bytes.resize(std::max<ssize_t>(0, ::recv(handle_, bytes.data(), size_t(bytes.size()), 0)));
        return bytes;
    }

  private:
    int handle_;
};

sockaddr_in loopback(quint16 port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// Accepts one connection after another on a loopback port and serves each in a thread of its own.
class Listener {
  public:
    explicit Listener(std::function<void(const Socket&)> serve)
        : listener_(::socket(AF_INET, SOCK_STREAM, 0)), serve_(std::move(serve)) {
        sockaddr_in address = loopback(0);
        socklen_t size = sizeof address;
        if (::bind(listener_, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
            ::listen(listener_, 16) != 0 ||
            ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
            throw std::runtime_error("no loopback port");
        }
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { acceptAll(); });
    }
    ~Listener() {
        ::shutdown(listener_, SHUT_RDWR);
        thread_.join();
        ::close(listener_);
    }
    quint16 port() const { return port_; }

  private:
    void acceptAll() {
        while (true) {
            const Socket connection(::accept(listener_, nullptr, nullptr));
            if (connection.handle() < 0) return;
            serve_(connection);
        }
    }

    int listener_;
    quint16 port_ = 0;
    std::function<void(const Socket&)> serve_;
    std::thread thread_;
};

/// Answers every payment with the same approval: what a host needs beyond that is its own business.
class ApprovingHost {
  public:
    ApprovingHost() : listener_([this](const Socket& connection) { serve(connection); }) {
        if (makeKeyPair(&keys_) != kDone) throw std::runtime_error("no host keys");
    }

    const PublicKey& publicKey() const { return keys_.publicKey; }
    quint16 port() const { return listener_.port(); }
    qsizetype requestBytes() const { return requestBytes_; }
    qsizetype replyBytes() const { return replyBytes_; }

  private:
    void serve(const Socket& connection) {
        FrameReader reader;
        Frame request;
        while (reader.next(&request) != FrameReader::Result::Complete) {
            const QByteArray bytes = connection.receive();
            if (bytes.isEmpty()) return;
            reader.add(bytes);
        }
        const auto opened = cardhost::openRequest(request.sealed, keys_);
        if (!opened) return;
        FieldWriter fields;
        fields.add(kMessageTypeField, kReplyType);
        fields.add(kMessageKindField, kCardPayment);
        fields.add(kResponseCodeField, u"0000");
        fields.add(kResponseTextField, u"정상처리");
        fields.add(kTransactionField, u"000000000001");
        for (const quint16 amount : {kAmountField, kFeeField, kDepositedField, kRemainingField}) {
            fields.add(amount, u"110000");
        }
        const auto sealed = cardhost::sealReply(opened->number, fields.bytes(), opened->replyKey, keys_);
        const QByteArray reply =
            encodeFrame({FrameKind::Reply, opened->number, sealed.value_or(QByteArray())});
        requestBytes_ = encodeFrame(request).size();
        replyBytes_ = reply.size();
        connection.send(reply);
    }

    KeyPair keys_;
    std::atomic<qsizetype> requestBytes_ = 0;
    std::atomic<qsizetype> replyBytes_ = 0;
    Listener listener_;
};

/// The terminal's side: a device folder whose component knows the host, and one payment after another.
class PayingTerminal {
  public:
    explicit PayingTerminal(const ApprovingHost& host)
        : port_(host.port()), before_(platform::device::folder()) {
        platform::device::setFolder(folder_.path());
        QDir(folder_.path()).mkpath(u"Flash Disk"_s);
        const SavedValues values{{kHostAddressKey.toString(), u"127000000001"_s},
                                 {kHostPortKey.toString(), QString::number(port_)},
                                 {kTerminalKey.toString(), u"0000000001"_s}};
        SigningKey own;
        if (startCipher() != kDone || !writeHostKey(host.publicKey()) || !writeSavedValues(values) ||
            makeSigningKey(&own) != kDone) {
            throw std::runtime_error("the terminal's files cannot be written");
        }
        QObject::connect(&component_, &Component::communicationEnded, [this] { loop_.quit(); });
        const desk::DemoCard& card = desk::demoCards().front();
        cardData_ = desk::track3(card).mid(1, 104);
        password_ = card.password.toString();
    }
    ~PayingTerminal() { platform::device::setFolder(before_); }

    void pay() {
        call(1, {u"JB", u"84", u"00", u"1234567890", u"    ", u"0200", kCardPayment});
        call(2, {u"123", u"        ", QStringView(cardData_), QStringView(password_), u"39", u"100000",
                 u"10000", u"0", u"0", u"0", u"110000"});
        call(25, {u"127.0.0.1", qint16(port_), qint16(30), qint16(0)});
        loop_.exec();
        QString code;
        call(10, {});
        call(11, {});
        call(22, {qint16(kResponseCodeField), &code});
        if (code != u"0000") throw std::runtime_error("a payment was not approved");
    }

  private:
    void call(int id, const std::vector<Argument>& arguments) {
        if (component_.invoke(id, arguments) != kDone) {
            throw std::runtime_error("operation " + std::to_string(id) + " failed");
        }
    }

    QTemporaryDir folder_;
    quint16 port_;
    QString before_;
    Component component_;
    QEventLoop loop_;
    QString cardData_;
    QString password_;
};

/// The bare calls: a connection, the request's bytes there, the reply's bytes back, and what libsodium does
/// to them on both ends.
class BareExchange {
  public:
    BareExchange(qsizetype requestBytes, qsizetype replyBytes)
        : request_(requestBytes, 'x'), reply_(replyBytes, 'y'), listener_([this](const Socket& connection) {
              qsizetype received = 0;
              while (received < request_.size()) {
                  const QByteArray bytes = connection.receive();
                  if (bytes.isEmpty()) return;
                  received += bytes.size();
              }
              connection.send(reply_);
          }) {
        crypto_box_keypair(hostPublic_.data(), hostSecret_.data());
        crypto_sign_keypair(signPublic_.data(), signSecret_.data());
    }

    void run() {
        cipher();
        const Socket connection(::socket(AF_INET, SOCK_STREAM, 0));
        const sockaddr_in address = loopback(listener_.port());
        if (::connect(connection.handle(), reinterpret_cast<const sockaddr*>(&address), sizeof address) !=
                0 ||
            !connection.send(request_)) {
            throw std::runtime_error("the bare exchange does not connect");
        }
        for (qsizetype received = 0; received < reply_.size();) {
            const QByteArray bytes = connection.receive();
            if (bytes.isEmpty()) throw std::runtime_error("the bare exchange got no reply");
            received += bytes.size();
        }
    }

  private:
    using Key = std::array<unsigned char, crypto_box_PUBLICKEYBYTES>;

    void cipher() {
        Key replyPublic;
        Key replySecret;
        crypto_box_keypair(replyPublic.data(), replySecret.data());
        const auto* text = reinterpret_cast<const unsigned char*>(request_.constData());
        std::array<unsigned char, crypto_sign_BYTES> signature;
        crypto_sign_detached(signature.data(), nullptr, text, size_t(request_.size()), signSecret_.data());
        std::vector<unsigned char> sealed(size_t(request_.size()) + crypto_box_SEALBYTES);
        std::vector<unsigned char> opened(sealed.size());
        crypto_box_seal(sealed.data(), text, size_t(request_.size()), hostPublic_.data());
        bool isGood = crypto_box_seal_open(opened.data(), sealed.data(), sealed.size(), hostPublic_.data(),
                                           hostSecret_.data()) == 0;
        std::array<unsigned char, crypto_box_NONCEBYTES> nonce;
        randombytes_buf(nonce.data(), nonce.size());
        std::vector<unsigned char> boxed(size_t(reply_.size()) + crypto_box_MACBYTES);
        std::vector<unsigned char> unboxed(size_t(reply_.size()));
        isGood = crypto_box_easy(boxed.data(), reinterpret_cast<const unsigned char*>(reply_.constData()),
                                 size_t(reply_.size()), nonce.data(), replyPublic.data(),
                                 hostSecret_.data()) == 0 &&
                 isGood;
        isGood = crypto_box_open_easy(unboxed.data(), boxed.data(), boxed.size(), nonce.data(),
                                      hostPublic_.data(), replySecret.data()) == 0 &&
                 isGood;
        if (!isGood) {
            throw std::runtime_error("the bare cipher does not open");
        }
    }

    QByteArray request_;
    QByteArray reply_;
    Key hostPublic_{};
    Key hostSecret_{};
    Key signPublic_{};
    std::array<unsigned char, crypto_sign_SECRETKEYBYTES> signSecret_{};
    Listener listener_;
};

/// Memory that this process has in use, in KiB. What is resident would also hold what others have let go.
double usedKiB() {
    const struct mallinfo2 heap = ::mallinfo2();
    return double(heap.uordblks + heap.hblkhd) / 1024;
}

}  // namespace

Result measureExchange() {
    // Before the hosts begin their threads, so that their half of the exchange counts on both sides.
    const InstructionCounter counter;
    ApprovingHost host;
    PayingTerminal terminal(host);
    terminal.pay();
    BareExchange bare(host.requestBytes(), host.replyBytes());
    const bool isCounted = counter.count().has_value();
    const auto now = [&] { return isCounted ? *counter.count() / 1000 : processorMilliseconds() * 1000; };
    const auto repeat = [&](auto&& once) {
        const double before = now();
        for (int i = 0; i < kExchangesARun; ++i) once();
        return (now() - before) / kExchangesARun;
    };
    return compare(
        5, isCounted ? "k instructions" : "us", [&] { return repeat([&] { terminal.pay(); }); },
        [&] { return repeat([&] { bare.run(); }); });
}

Result measurePayments() {
    // What other measurements have left in this process would hide a leak.
    const double before = usedKiB();
    ApprovingHost host;
    PayingTerminal terminal(host);
    int paid = 0;
    const auto payUpTo = [&](int count) {
        for (; paid < count; ++paid) terminal.pay();
        return usedKiB() - before;
    };
    const double after = payUpTo(kFirstPayments);
    return {.ours = payUpTo(kAllPayments), .peer = after, .unit = "KiB"};
}

}  // namespace bench
