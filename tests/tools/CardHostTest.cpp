#include "AdminTest.h"
#include "common/Enrolment.h"
#include "platform/message/SavedValues.h"

namespace test {
namespace {

using namespace platform::message;

class CardHostTest : public AdminTest {
  protected:
    /// Enters a host of that key; `terminal` is "" to leave it.
    Ended set(const QString& host, const QString& port, const QString& terminal = {}) {
        const QStringList more = terminal.isEmpty() ? QStringList() : QStringList{u"--terminal"_s, terminal};
        return run(QStringList{u"card-host"_s, u"--host"_s, host, u"--port"_s, port, u"--key"_s, key_} +
                   more);
    }
    static SavedValues saved() {
        SavedValues values;
        EXPECT_EQ(readSavedValues(&values), kDone);
        return values;
    }
    static PublicKey hostKey() {
        PublicKey key{};
        EXPECT_EQ(readHostKey(&key), kDone);
        return key;
    }

    QString key_ = writeFile(u"host.pub"_s, QByteArray(62, 'a') + "B1\n");
};

TEST_F(CardHostTest, WritesWhatTheTerminalReads) {
    makeDevice();
    const Ended first = set(u"10.11.2.3"_s, u"40001"_s, u"4711"_s);
    SigningKey own;
    ASSERT_EQ(readSigningKey(&own), kDone);
    EXPECT_EQ(first.out,
              "terminal 4711 uses the card host 10.11.2.3:40001\n"
              "the host answers it after: rovana-cardhost enrol --dir HOSTDIR --terminal 4711 --key " +
                  QByteArrayView(own.publicKey).toByteArray().toHex().toStdString() + "\n");
    SavedValues expected{{u"101"_s, u"4711"_s}, {u"221"_s, u"010011002003"_s}, {u"222"_s, u"40001"_s}};
    EXPECT_EQ(saved(), expected);
    EXPECT_EQ(hostKey()[0], 0xAA);
    EXPECT_EQ(hostKey()[31], 0xB1);

    // Another host keeps the terminal's number and what else is saved.
    expected[u"301"_s] = u"kept as it is"_s;
    ASSERT_TRUE(writeSavedValues(expected));
    EXPECT_FALSE(writeSavedValues({{u"4 1"_s, u""_s}}) || writeSavedValues({{u"401"_s, u"a\nb"_s}}));
    writeFile(u"host.key"_s, "the host's own folder");
    EXPECT_EQ(set(u"127.0.0.1"_s, u"1"_s).exitCode, admin::kSuccess);
    EXPECT_EQ(cardhost::enrolledKey(folder(), u"4711"_s), own.publicKey) << "with the key of before";
    expected[u"221"_s] = u"127000000001"_s;
    expected[u"222"_s] = u"1"_s;
    EXPECT_EQ(saved(), expected);
    ran({u"card-host"_s, u"--host"_s, u"[fd00::2]:40002"_s, u"--key"_s, key_});
    EXPECT_EQ(saved()[u"221"_s] + u' ' + saved()[u"222"_s], u"fd00::2 40002"_s);

    // While it is open what became of a payment, nobody but the host of before can tell, nor would it tell
    // another terminal.
    execute(u"INSERT INTO PAYJOURNAL (Number, State) VALUES ('1', 'unknown')"_s);
    EXPECT_EQ(set(u"127.0.0.1"_s, u"2"_s).exitCode, admin::kSuccess) << "it may move";
    EXPECT_EQ(set(u"127.0.0.1"_s, u"2"_s, u"4712"_s).exitCode, admin::kFailure);
    EXPECT_EQ(set(u"127.0.0.1"_s, u"2"_s, u"4711"_s).exitCode, admin::kSuccess);
    ASSERT_TRUE(writeSavedValues({}));
    EXPECT_EQ(set(u"127.0.0.1"_s, u"2"_s).exitCode, admin::kFailure) << "it would be a new number";
    EXPECT_EQ(set(u"127.0.0.1"_s, u"2"_s, u"4711"_s).exitCode, admin::kSuccess);
    writeFile(u"host.pub"_s, QByteArray(64, 'c'));
    EXPECT_EQ(set(u"127.0.0.1"_s, u"3"_s).exitCode, admin::kFailure);
    EXPECT_EQ(hostKey()[0], 0xAA);
}

}  // namespace
}  // namespace test
