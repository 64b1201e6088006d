#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <optional>

#include "platform/SecureBytes.h"
#include "platform/Sqlite.h"
#include "platform/message/Fields.h"
#include "rovana-cardhost/HostSeal.h"
#include "rovana-cardhost/Keys.h"

namespace cardhost {

/// What becomes of a request.
struct Response {
    QStringView code;
    QStringView text;
};
inline constexpr Response kApproved{u"0000", u"정상처리"};
inline constexpr Response kUnknownCard{u"0011", u"미등록카드"};
inline constexpr Response kWrongPassword{u"0012", u"비밀번호오류"};
inline constexpr Response kOverBalance{u"0013", u"잔액부족"};
inline constexpr Response kOverLimit{u"0014", u"한도초과"};
inline constexpr Response kBadAmount{u"0015", u"거래금액오류"};
inline constexpr Response kNoPrevious{u"0016", u"직전거래없음"};
inline constexpr Response kNumberReused{u"0017", u"전문번호중복"};
inline constexpr Response kBadMessage{u"0018", u"전문오류"};
inline constexpr Response kNeverReceived{
    u"0019", u"해당거래없음"};  ///< The number asked about; it is refused from then on.
inline constexpr Response kCardLocked{u"0020", u"비밀번호횟수초과"};
inline constexpr Response kLedgerFailed{u"0098", u"호스트장애"};
inline constexpr Response kRefused{u"0099", u"거래거절"};  ///< For no reason: a fault that was asked for.

/// An amount of a payment beyond this, in won, is refused: it is a mistake, and sums stay within 64 bits.
inline constexpr qint64 kLargestAmount = 1'000'000'000'000;

/// The list of a day in a summary has at most so many bytes, so that the whole answer fits its frame.
inline constexpr qsizetype kLongestList = 60'000;

/// So many wrong passwords in a row lock a card.
inline constexpr int kMostWrongPasswords = 5;

/// What the host takes of a card payment: 15 won of each 10,000, rounded down.
constexpr qint64 feeOf(qint64 amount) {
    return amount * 15 / 10'000;
}

/// How a request is answered where a fault was asked for.
enum class Manner {
    Usual,
    Refusing,  ///< What would be approved is refused.
};

/// A card as the administrator sees it.
struct CardState {
    QString number;  ///< First 6 and last 4 digits, the rest masked.
    qint64 balance;  ///< Won.
    qint64 limit;    ///< The most that one payment may take, won.
    bool isLocked;   ///< By wrong passwords; putCard or unlockCard open it.
};

/// The host's cards and everything it ever answered, in one SQLite file of its folder. Tracks and passwords
/// are kept as digests only.
class Ledger {
  public:
    /// Opens the folder's ledger, made when there is none. Throws platform::SqliteError.
    Ledger(const QString& folder, Keys keys);

    const Keys& keys() const { return keys_; }

    /// Enters a card, or replaces what is known of it. `track3` is as a reader gives it, start sentinel
    /// first.
    void putCard(QStringView track3, QStringView password, qint64 balance, qint64 limit);
    /// Whether putCard has entered the card.
    bool hasCard(QStringView track3);
    /// Forgets the wrong passwords of the card, if there is one.
    void unlockCard(QStringView track3);
    QList<CardState> cards();

    /// The fields of the answer to a request. What an approved payment changes is on disk when this returns.
    /// A request with a known message number gets its answer of before and changes nothing.
    platform::SecureBytes answer(const OpenedRequest& request, Manner manner = Manner::Usual);

  private:
    struct Card {
        qint64 id;
        qint64 balance;
        qint64 limit;
    };
    /// A request that is being answered.
    struct Call {
        const platform::message::Fields& fields;
        QString terminal;
        QString kind;
        qint64 exchange;
        qint64 subject;  ///< The exchange that the answer is about.
        Manner manner;
        platform::message::FieldWriter& reply;
    };

    QByteArray digest(char use, QByteArrayView bytes) const;
    /// The next id of the table that the statement reads.
    qint64 nextId(const char* sql);
    /// The answer to a request whose number is known, if it is: that of before, or its refusal.
    std::optional<platform::SecureBytes> answerAgain(const OpenedRequest& request, const QByteArray& digest,
                                                     platform::message::FieldWriter& refusal);
    Response findCard(QByteArrayView cardData, QByteArrayView password, Card* card);
    Response decide(Call& call);
    Response pay(Call& call);
    Response inquire(Call& call);
    Response tellPrevious(Call& call);
    Response tellOf(Call& call, const platform::message::MessageNumber& number);
    /// Enters that the number was asked about and had not come, which refuses it for good.
    Response closeNumber(Call& call, const platform::message::MessageNumber& number);
    Response sum(Call& call);
    void list(Call& call, const QString& day);

    Keys keys_;
    platform::SqliteFile file_;
};

}  // namespace cardhost
