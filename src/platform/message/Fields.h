#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringView>
#include <optional>
#include <vector>

#include "platform/SecureBytes.h"

/// What a message says: numbered texts. Shared by the terminal's component and the card host.
namespace platform::message {

// Field numbers; 1 to 7 are the header values in their order. A reply's own fields have the numbers under
// which the application reads them.
inline constexpr quint16 kMessageTypeField = 6;  ///< Header value "0200" of a request, "0210" of a reply.
inline constexpr quint16 kMessageKindField = 7;
inline constexpr quint16 kTerminalField = 8;         ///< The terminal's saved value "101".
inline constexpr quint16 kFirstParameterField = 11;  ///< Parameter n of a request is field 10 + n.
/// The payment that a previous-transaction request asks about, by its message number in 32 hexadecimal
/// digits.
inline constexpr quint16 kAskedNumberField = 31;
inline constexpr quint16 kIdentificationField = 1002;
inline constexpr quint16 kTransactionField = 1008;
inline constexpr quint16 kResponseCodeField = 1102;
inline constexpr quint16 kBalanceSignField = 1103;
inline constexpr quint16 kAmountField = 1104;
inline constexpr quint16 kFeeField = 1105;
inline constexpr quint16 kDepositedField = 1106;
inline constexpr quint16 kRemainingField = 1107;
inline constexpr quint16 kBalanceField = 1109;
inline constexpr quint16 kLimitField = 1110;
inline constexpr quint16 kTransferCountField = 1115;
inline constexpr quint16 kSupplyTotalField = 1116;
inline constexpr quint16 kVatTotalField = 1117;
inline constexpr quint16 kDepositTotalField = 1118;
inline constexpr quint16 kRecoveryTotalField = 1119;
inline constexpr quint16 kAmountTotalField = 1120;
inline constexpr quint16 kFeeTotalField = 1121;
inline constexpr quint16 kTransferTotalField = 1122;
inline constexpr quint16 kListTotalField = 1123;       ///< How many payments the day has, listed or cut.
inline constexpr quint16 kListField = 1124;            ///< The day's payments, a line each.
inline constexpr quint16 kAnsweredNumberField = 1131;  ///< The asked number, in an answer about it.
inline constexpr quint16 kResponseTextField = 1203;

inline constexpr QStringView kRequestType = u"0200";
inline constexpr QStringView kReplyType = u"0210";

// Message kinds, header value 7.
inline constexpr QStringView kCardPayment = u"0100";
inline constexpr QStringView kCashPayment = u"0150";
inline constexpr QStringView kBalanceInquiry = u"0300";
inline constexpr QStringView kPreviousTransaction = u"0600";
inline constexpr QStringView kSummary = u"0800";

/// Writes fields one after the other. The caller gives each number once.
class FieldWriter {
  public:
    /// Adds a text of at most 65,535 bytes of UTF-8; a longer one is cut.
    void add(quint16 number, QStringView text);

    const SecureBytes& bytes() const { return bytes_; }

  private:
    SecureBytes bytes_;
};

/// The fields of one message.
class Fields {
  public:
    /// Reads fields; nothing for bytes cut short, a number given twice or a text that is not UTF-8.
    static std::optional<Fields> parse(SecureBytes bytes);

    /// The bytes of a field; nothing for one that is not there.
    std::optional<QByteArrayView> bytes(quint16 number) const;

    /// The text of a field; empty for one that is not there. Not for passwords and tracks: the text is not
    /// wiped.
    QString text(quint16 number) const;

    bool has(quint16 number) const { return bytes(number).has_value(); }

  private:
    struct Entry {
        quint16 number;
        std::size_t at;
        std::size_t size;
    };

    SecureBytes content_;
    std::vector<Entry> entries_;
};

}  // namespace platform::message
