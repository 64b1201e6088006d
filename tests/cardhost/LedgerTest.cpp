#include "rovana-cardhost/Ledger.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "desk/demo/DemoCards.h"
#include "platform/message/Fields.h"
#include "support/FullDisk.h"
#include "support/PrintQt.h"

namespace test {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::message;
using cardhost::Ledger;

/// A request's fields by number.
using Request = QMap<quint16, QString>;

QString cardData(QStringView name) {
    return desk::track3(*desk::findDemoCard(name)).mid(1, 104);
}

class LedgerTest : public ::testing::Test {
  protected:
    LedgerTest() {
        open();
        enter(u"good");
        enter(u"second");
    }

    void open() {
        QString error;
        ledger.reset();
        ledger = std::make_unique<Ledger>(folder.path(), *cardhost::openKeys(folder.path(), &error));
    }
    void enter(QStringView name) {
        const auto& card = *desk::findDemoCard(name);
        ledger->putCard(desk::track3(card), card.password, card.balance, card.limit);
    }

    static Request request(const QString& kind, const QStringList& parameters = {}) {
        Request request{{1, u"JB"_s},   {2, u"84"_s},   {3, u"00"_s}, {4, u"1234567890"_s},
                        {5, u"    "_s}, {6, u"0200"_s}, {7, kind},    {8, u"99"_s}};
        quint16 field = kFirstParameterField;
        for (const QString& parameter : parameters) request[field++] = parameter;
        return request;
    }
    static Request payment(QStringView card = u"good", const QString& password = u"1234"_s) {
        return request(u"0100"_s, {u"123"_s, u"        "_s, cardData(card), password, u"39"_s, u"10000"_s,
                                   u"1000"_s, u"500"_s, u"1"_s, u"500"_s, u"11000"_s});
    }
    static Request balance(QStringView card, const QString& password) {
        return request(u"0300"_s, {u"090501"_s, cardData(card), password, u"39"_s});
    }

    /// The answer's code. What every answer has is looked at.
    QString ask(const Request& request, MessageNumber number = makeMessageNumber()) {
        FieldWriter writer;
        for (auto field = request.begin(); field != request.end(); ++field) writer.add(field.key(), *field);
        cardhost::OpenedRequest opened;
        opened.number = number;
        opened.fields = writer.bytes();
        const auto reply = Fields::parse(ledger->answer(opened));
        EXPECT_TRUE(reply);
        static const QRegularExpression identification(u"\\AJB[0-9]{10}\\z"_s);
        EXPECT_TRUE(identification.match(reply->text(kIdentificationField)).hasMatch());
        EXPECT_NE(reply->text(kResponseTextField), u"");
        lastIdentification = reply->text(kIdentificationField);
        return reply->text(kResponseCodeField);
    }
    QList<bool> locked() {
        QList<bool> states;
        for (const auto& card : ledger->cards()) states << card.isLocked;
        return states;
    }

    QTemporaryDir folder;
    std::unique_ptr<Ledger> ledger;
    QString lastIdentification;
};

TEST_F(LedgerTest, TheWriteAheadLogDoesNotGrow) {
    const auto logBytes = [&] { return QFileInfo(folder.filePath(u"ledger.db-wal"_s)).size(); };
    // More than twice what SQLite lets it grow to before it starts anew.
    for (int i = 0; i < 800; ++i) ASSERT_EQ(ask(request(u"0600"_s)), u"0016");
    EXPECT_GT(logBytes(), 0);
    EXPECT_LT(logBytes(), 5'000'000);
}

TEST_F(LedgerTest, FiveWrongPasswordsInARowLockACard) {
    for (int i = 0; i < 4; ++i) EXPECT_EQ(ask(payment(u"good", u"0000"_s)), u"0012");
    EXPECT_EQ(ask(payment()), u"0000") << "and the count starts anew";
    for (int i = 0; i < 3; ++i) EXPECT_EQ(ask(balance(u"good", u"0000"_s)), u"0012");
    open();
    EXPECT_EQ(locked(), QList({false, false}));
    for (int i = 0; i < 2; ++i) EXPECT_EQ(ask(payment(u"good", u"9876"_s)), u"0012");
    EXPECT_EQ(locked(), QList({true, false}));

    const MessageNumber number = makeMessageNumber();
    EXPECT_EQ(ask(payment(), number), u"0020") << "the right password tells nothing";
    EXPECT_EQ(ask(balance(u"good", u"1234"_s)), u"0020");
    open();
    EXPECT_EQ(ask(payment()), u"0020");
    Request question = request(u"0600"_s);
    question[kAskedNumberField] = toText(number);
    EXPECT_EQ(ask(question), u"0020");
    EXPECT_EQ(ask(payment(u"second", u"4321"_s)), u"0000") << "another card";

    enter(u"good");
    EXPECT_EQ(locked(), QList({false, false}));
    EXPECT_EQ(ask(payment()), u"0000");
}

TEST_F(LedgerTest, WhatIsNoWholeRequestIsRefused) {
    const Request requests[] = {payment(), balance(u"good", u"1234"_s),
                                request(u"0800"_s, {u"183000"_s, u"20261121"_s})};
    for (const Request& whole : requests) {
        ASSERT_EQ(ask(whole), u"0000");
        for (const quint16 missing : whole.keys()) {
            Request cut = whole;
            cut.remove(missing);
            EXPECT_EQ(ask(cut), u"0018") << "field " << missing << " of kind " << whole[7].toStdString();
        }
    }
    const qint64 before = ledger->cards()[0].balance;
    for (const quint16 field : {16, 17, 18, 20, 21}) {
        for (const QString& amount :
             {u""_s, u" 5"_s, u"5 "_s, u"5\n"_s, u"+5"_s, u"-5"_s, u"-0"_s, u"1,000"_s, u"0x10"_s, u"5.0"_s,
              u"５"_s, u"1000000000001"_s, u"99999999999999999999"_s}) {
            Request changed = payment();
            changed[field] = amount;
            EXPECT_EQ(ask(changed), u"0015") << field << " " << amount.toStdString();
        }
    }
    Request returned = payment();
    returned[19] = u"2"_s;
    EXPECT_EQ(ask(returned), u"0018");
    EXPECT_EQ(ledger->cards()[0].balance, before);
}

TEST_F(LedgerTest, EveryReplyTellsItsExchange) {
    const MessageNumber number = makeMessageNumber();
    EXPECT_EQ(ask(payment(), number), u"0000");
    const QString first = lastIdentification;
    EXPECT_EQ(first, u"JB0000000001");
    EXPECT_EQ(ask(payment(u"second", u"4321"_s), number), u"0017");
    EXPECT_EQ(lastIdentification, first) << "that of the number";
    EXPECT_EQ(ask(request(u"0999"_s)), u"0018");
    EXPECT_EQ(lastIdentification, u"JB0000000002");
    const FullDisk full(0);
    EXPECT_EQ(ask(payment()), u"0098");
    EXPECT_EQ(lastIdentification, u"JB0000000000") << "nothing could be entered";
}

}  // namespace
}  // namespace test
