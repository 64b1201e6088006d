#include <gtest/gtest.h>

#include <QApplication>
#include <QEventLoop>
#include <optional>

#include "platform/message/SavedValues.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"
#include "van/KsnetMsgLib.h"

namespace test {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::message;

class KsnetMsgLibTest : public ::testing::Test {
  protected:
    KsnetMsgLibTest() {
        if (QCoreApplication::instance() == nullptr) application();
        lib.emplace();
        KeyPair host;
        EXPECT_EQ(startCipher(), kDone);
        EXPECT_EQ(makeKeyPair(&host), kDone);
        EXPECT_TRUE(writeHostKey(host.publicKey));
        EXPECT_TRUE(writeSavedValues({{u"101"_s, u"4711"_s}, {u"222"_s, u"40001"_s}}));
    }

    /// The control is a widget, and the first test may find no application yet.
    static QApplication& application() {
        static int count = 1;
        static char name[] = "test_van";
        static char* names[] = {name, nullptr};
        static QApplication made(count, names);
        return made;
    }

    int header(QStringView kind) {
        return lib->HeaderReq(u"JB", u"84", u"00", u"1234567890", u"    ", u"0200", kind);
    }

    TestDevice device;
    std::optional<van::CKsnet_msg_lib> lib;
};

// Each request reaches the operation that takes just this kind and these parameters in this order.
TEST_F(KsnetMsgLibTest, RequestsReachTheirOperations) {
    const QString card(104, u'7');
    ASSERT_EQ(header(u"0100"), kDone);
    EXPECT_EQ(lib->PaymentReq(u"123", u"        ", card, u"1234", u"39", u"10", u"1", u"0", u"1", u"5", u"6"),
              kDone);
    EXPECT_EQ(lib->PaymentReq(u"123", u"        ", card, u"1234", u"39", u"10", u"1", u"0", u"5", u"1", u"6"),
              kBadInput)
        << "the flag comes before the recovery";
    EXPECT_EQ(lib->BalanceReq(u"090501", card, u"1234", u"39"), kBadInput) << "no balance inquiry's header";
    ASSERT_EQ(header(u"0300"), kDone);
    EXPECT_EQ(lib->BalanceReq(u"090501", card, u"1234", u"39"), kDone);
    ASSERT_EQ(header(u"0600"), kDone);
    EXPECT_EQ(lib->setPreTradeRep(), kDone);
    ASSERT_EQ(header(u"0800"), kDone);
    EXPECT_EQ(lib->setSummaryReq(u"183000", u"20261121"), kDone);

    QString value;
    EXPECT_EQ(lib->GetSavedValue(u"222", &value), kDone);
    EXPECT_EQ(value, u"40001");
    EXPECT_EQ(lib->GetSavedValue(u"221", &value), kSavedMissing);
    EXPECT_EQ(value, u"");
}

TEST_F(KsnetMsgLibTest, WhatTheNetworkDoesNotOfferIsBadInput) {
    EXPECT_EQ(lib->RecvHeader(), kBadInput);
    EXPECT_EQ(lib->RecvPayment(), kBadInput);
    EXPECT_EQ(lib->RecvPreTrade(), kBadInput);
    EXPECT_EQ(lib->RecvBalance(), kBadInput);
    EXPECT_EQ(lib->RecvSummary(), kBadInput);
    EXPECT_EQ(lib->Operation5(u"", u""), kBadInput);
    EXPECT_EQ(lib->Operation9(u"", u""), kBadInput);
    EXPECT_EQ(lib->Operation13(), kBadInput);
    EXPECT_EQ(lib->Operation21(), kBadInput);
    QString text = u"left over"_s;
    EXPECT_EQ(lib->GetRecvField(1102, &text), kBadInput);
    EXPECT_EQ(text, u"");
    text = u"left over"_s;
    EXPECT_EQ(lib->Operation26(&text, &text, &text, &text, &text), kBadInput);
    EXPECT_EQ(text, u"");
    lib->AboutBox();
}

TEST_F(KsnetMsgLibTest, EventsPassThrough) {
    QStringList events;
    QEventLoop loop;
    QObject::connect(&*lib, &van::CKsnet_msg_lib::ksnetError,
                     [&](int code) { events << QString::number(code); });
    QObject::connect(&*lib, &van::CKsnet_msg_lib::communicationEnded, &loop, &QEventLoop::quit);
    EXPECT_EQ(lib->Commun(u"127.0.0.1", 1, 30, 0), kBadInput) << "no request to send";
    loop.exec();
    EXPECT_EQ(events, QStringList{u"-100"_s});
}

}  // namespace
}  // namespace test
