#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include "ui/Sounds.h"

namespace {

using namespace Qt::Literals::StringLiterals;

// A player of our own, found before the machine's, keeps what it is to play.
TEST(Sounds, ReachThePlayerAsWavesWhileTheyAreOn) {
    QTemporaryDir folder;
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(folder.path()) + ':' + path);
    QFile player(folder.filePath(u"pw-play"_s));
    ASSERT_TRUE(player.open(QIODevice::WriteOnly));
    player.write("#!/bin/sh\ncd \"${0%/*}\" && cp \"$1\" part && mv part heard\n");
    player.close();
    ASSERT_TRUE(player.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));

    ui::play(ui::Sound::Swipe);
    ui::setSounds(true);
    QFile heard(folder.filePath(u"heard"_s));
    QList<QByteArray> waves;
    for (const ui::Sound sound : {ui::Sound::Approved, ui::Sound::Refused, ui::Sound::Approved}) {
        ui::play(sound);
        ASSERT_TRUE(QTest::qWaitFor([&] { return heard.exists(); }));
        ASSERT_TRUE(heard.open(QIODevice::ReadOnly));
        waves << heard.readAll();
        heard.close();
        heard.remove();
    }
    ui::setSounds(false);
    qputenv("PATH", path);

    constexpr qsizetype kHead = 44;
    for (const QByteArray& wave : waves) {
        ASSERT_TRUE(wave.startsWith("RIFF") && wave.sliced(8).startsWith("WAVEfmt ")) << wave.size();
        EXPECT_EQ(qFromLittleEndian<quint32>(wave.constData() + 4), wave.size() - 8);
        EXPECT_EQ(qFromLittleEndian<quint32>(wave.constData() + 40), wave.size() - kHead);
        const double seconds =
            double(wave.size() - kHead) / qFromLittleEndian<quint32>(wave.constData() + 28);
        EXPECT_TRUE(seconds > 0.05 && seconds < 1) << seconds;
    }
    EXPECT_NE(waves[0], waves[1]);
    EXPECT_EQ(waves[0], waves[2]) << "the swipe before they were on was silent";
}

}  // namespace
