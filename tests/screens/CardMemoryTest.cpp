#include <gtest/gtest.h>

#include <QPlainTextEdit>
#include <QTest>
#include <QTimer>

#include "Screens.h"
#include "app/Session.h"
#include "books/TransactionRecord.h"
#include "platform/message/SavedValues.h"
#include "platform/termdev/CardReader.h"
#include "rovana-cardhost/Ledger.h"
#include "support/HostProcess.h"
#include "support/MemorySearch.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"
#include "ui/Terminal.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using platform::SecureBytes;
using platform::SecureText;

/// Its digits are drawn so that nothing in memory has them in a row before they are keyed.
unsigned drawn = 0;
constexpr test::Secret kPassword{[](std::size_t at) {
                                     unsigned rest = drawn;
                                     for (; at > 0; --at) rest /= 10;
                                     return char16_t(u'0' + rest % 10);
                                 },
                                 4};
/// The card number, at the beginning of track 2.
constexpr test::Secret kNumber{
    [](std::size_t at) { return char16_t(u'0' + (at * at * 3 + at * 7 + 4) % 10); }, 16};

QStringList whereOfTheCard() {
    QStringList places;
    for (const auto& [name, secret] : {std::pair{u"track 3"_s, &test::kTrackPiece},
                                       {u"the card number"_s, &kNumber},
                                       {u"the password"_s, &kPassword}}) {
        for (const std::string& place : secret->places())
            places << name + u" in "_s + QString::fromStdString(place);
    }
    return places;
}

SecureBytes track(char start, const test::Secret& secret, char end) {
    SecureBytes bytes(1, uchar(start));
    for (std::size_t at = 0; at < secret.size; ++at) bytes.push_back(uchar(secret.character(at)));
    bytes.push_back(uchar(end));
    return bytes;
}

QByteArrayView view(const SecureBytes& bytes) {
    return {bytes.data(), qsizetype(bytes.size())};
}

void press(ui::Screen* screen, int control) {
    QTest::mouseClick(screen->control(control), Qt::LeftButton);
}

/// Keys the password on the keypad: half of it with the finger, half on a keyboard.
void keyPassword(ui::Screen* keypad) {
    constexpr int kDigitKeys[] = {1038, 1029, 1030, 1031, 1032, 1033, 1034, 1035, 1036, 1037};
    for (std::size_t at = 0; at < kPassword.size; ++at) {
        const char16_t digit = kPassword.character(at);
        at % 2 == 0 ? press(keypad, kDigitKeys[digit - u'0']) : QTest::keyClick(keypad, char(digit));
        QCoreApplication::processEvents();
    }
    press(keypad, 1000);
}

/// Puts the card through the reader of the card dialog and leaves the dialog after the exchange.
void useCard(ui::Screen* dialog) {
    const SecureBytes track2 = track(';', kNumber, '=');
    const SecureBytes track3 = track('+', test::kTrack, '?');
    EXPECT_TRUE(platform::termdev::CardReader::instance().swipe(view(track2), view(track3)));
    const auto* log = static_cast<QPlainTextEdit*>(dialog->control(1142));
    EXPECT_TRUE(QTest::qWaitFor([&] { return log->toPlainText().endsWith(u"[통신종료] "_s); }, 20'000));
    EXPECT_FALSE(log->toPlainText().contains(u"[에러발생]"_s)) << qPrintable(log->toPlainText());
    const books::TransactionRecord& record = books::transactionRecord();
    const auto isWiped = [&] {
        return record.track2.view().isEmpty() && record.track3.view().isEmpty() &&
               record.password.view().isEmpty();
    };
    if (app::session().WorkMode == app::kSimplePayment) {
        EXPECT_TRUE(QTest::qWaitFor(isWiped, 5'000)) << "with the approval, not only when the dialog is left";
    }
    press(dialog, 1003);
}

/// What is left of the card after the dialog was opened for that work, used and left.
QStringList leftAfter(int workMode, const test::HostProcess& host) {
    do {
        drawn = (drawn + 2917) % 10'000;
    } while (!kPassword.places().empty());
    {
        QString error;
        cardhost::Ledger ledger(host.folder(), *cardhost::openKeys(host.folder(), &error));
        const SecureText password = kPassword.make();
        const SecureBytes track3 = track('+', test::kTrack, '?');
        SecureText text;
        text.assign(view(track3));
        ledger.putCard(text.view(), password.view(), 1'000'000, 1'000'000);
        EXPECT_EQ(whereOfTheCard().size(), 2) << "the search finds what is there";
    }
    app::session() = {};
    app::session().UserID = u"A"_s;
    app::session().WorkDate = u"2026-11-21"_s;
    app::session().WorkMode = workMode;
    app::session().action.GCode = u"0001"_s;
    app::session().action.JunNo = u"5001"_s;
    books::resetTransactionRecord();
    books::transactionRecord().amounts.total = platform::Won(11'000);
    ui::runScreen(449);
    return whereOfTheCard();
}

TEST(CardMemory, HoldsNothingOfACardAfterTheCardDialog) {
    if (!test::kCanSearchMemory) GTEST_SKIP();
    test::TestDevice device;
    test::HostProcess host;
    host.start();
    ASSERT_TRUE(platform::message::writeSavedValues(
        {{u"101"_s, u"4711"_s}, {u"221"_s, u"127000000001"_s}, {u"222"_s, QString::number(host.port())}}));
    registerScreens();
    ui::Terminal terminal;
    terminal.setVisible(true);
    int keyed = 0;
    QObject::connect(&terminal, &ui::Terminal::topChanged, &terminal, [&](ui::Screen* front) {
        if (front == nullptr) return;
        if (front->id() == 130) {
            ++keyed;
            QTimer::singleShot(0, front, [front] { keyPassword(front); });
        } else if (front->id() == 449 && front->property("used").isNull()) {
            front->setProperty("used", true);
            QTimer::singleShot(0, front, [front] { useCard(front); });
        } else if (front->id() == 0) {
            QTimer::singleShot(0, front, [front] { front->close(ui::Screen::Accepted); });
        }
    });
    for (const int workMode : {app::kBalanceInquiry, app::kSimplePayment}) {
        QStringList left = leftAfter(workMode, host);
        // Four digits may also come together by chance, but not twice.
        if (!left.isEmpty()) left = leftAfter(workMode, host);
        EXPECT_EQ(left, QStringList()) << "work " << workMode;
    }
    EXPECT_GE(keyed, 2);
    EXPECT_NE(device.value(u"SELECT COUNT(*) FROM PAYJOURNAL"_s), u"0");
}

}  // namespace
