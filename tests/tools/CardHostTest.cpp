#include <QFileInfo>

#include "AdminTest.h"
#include "common/Enrolment.h"
#include "platform/Device.h"
#include "platform/message/SavedValues.h"

namespace test {
namespace {

using namespace platform::message;

class CardHostTest : public AdminTest {
  protected:
    Ended set(const QString& host, const QString& port, const QString& key, const QStringList& more = {}) {
        return run(QStringList{u"card-host"_s, u"--host"_s, host, u"--port"_s, port, u"--key"_s, key} + more);
    }
};

TEST_F(CardHostTest, WritesWhatTheTerminalReads) {
    makeDevice();
    const QString key = writeFile(u"host.pub"_s, QByteArray(62, 'a') + "B1\n");
    Ended ended = set(u"10.11.2.3"_s, u"40001"_s, key, {u"--terminal"_s, u"4711"_s});
    EXPECT_EQ(ended.exitCode, admin::kSuccess) << narrow(ended.err);
    SigningKey own;
    ASSERT_EQ(readSigningKey(&own), kDone);
    const QByteArray ownKey = QByteArrayView(own.publicKey).toByteArray().toHex();
    EXPECT_EQ(narrow(ended.out),
              "terminal 4711 uses the card host 10.11.2.3:40001\n"
              "the host answers it after: rovana-cardhost enrol --dir HOSTDIR --terminal 4711 --key " +
                  ownKey.toStdString() + "\n");
    SavedValues values;
    ASSERT_EQ(readSavedValues(&values), kDone);
    EXPECT_EQ(values,
              (SavedValues{{u"101"_s, u"4711"_s}, {u"221"_s, u"010011002003"_s}, {u"222"_s, u"40001"_s}}));
    PublicKey read;
    ASSERT_EQ(readHostKey(&read), kDone);
    EXPECT_EQ(read[0], 0xAA);
    EXPECT_EQ(read[31], 0xB1);

    // Another host keeps the terminal's number and what else is saved.
    values[u"301"_s] = u"kept"_s;
    ASSERT_TRUE(writeSavedValues(values));
    const QString folder = QFileInfo(key).path();
    writeFile(u"host.key"_s, "the host's own folder");
    EXPECT_EQ(set(u"127.0.0.1"_s, u"1"_s, key).exitCode, admin::kSuccess);
    EXPECT_EQ(cardhost::enrolledKey(folder, u"4711"_s), own.publicKey) << "with the key of before";
    ASSERT_EQ(readSavedValues(&values), kDone);
    EXPECT_EQ(values, (SavedValues{{u"101"_s, u"4711"_s},
                                   {u"221"_s, u"127000000001"_s},
                                   {u"222"_s, u"1"_s},
                                   {u"301"_s, u"kept"_s}}));

    EXPECT_TRUE(run({u"card-host"_s, u"--host"_s, u"[fd00::2]:40002"_s, u"--key"_s, key})
                    .out.startsWith(u"terminal 4711 uses the card host [fd00::2]:40002\n"));
    ASSERT_EQ(readSavedValues(&values), kDone);
    EXPECT_EQ(values[u"221"_s] + u' ' + values[u"222"_s], u"fd00::2 40002"_s);

    // While it is open what became of a payment, nobody but the host of before can tell.
    execute(u"INSERT INTO PAYJOURNAL (Number, State) VALUES ('1', 'unknown')"_s);
    EXPECT_EQ(set(u"127.0.0.1"_s, u"2"_s, key).exitCode, admin::kSuccess) << "it may move";
    ended = set(u"127.0.0.1"_s, u"3"_s, writeFile(u"other.pub"_s, QByteArray(64, 'c')));
    EXPECT_EQ(ended.exitCode, admin::kFailure) << narrow(ended.out);
    ASSERT_EQ(readHostKey(&read), kDone);
    EXPECT_EQ(read[0], 0xAA);
    // Nor would that host tell another terminal.
    EXPECT_EQ(set(u"127.0.0.1"_s, u"2"_s, key, {u"--terminal"_s, u"4712"_s}).exitCode, admin::kFailure);
    EXPECT_EQ(set(u"127.0.0.1"_s, u"2"_s, key, {u"--terminal"_s, u"4711"_s}).exitCode, admin::kSuccess);
    ASSERT_TRUE(writeSavedValues({}));
    EXPECT_EQ(set(u"127.0.0.1"_s, u"2"_s, key).exitCode, admin::kFailure) << "it would be a new number";
    EXPECT_EQ(set(u"127.0.0.1"_s, u"2"_s, key, {u"--terminal"_s, u"4711"_s}).exitCode, admin::kSuccess);
}

}  // namespace
}  // namespace test
