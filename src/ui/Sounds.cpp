#include "ui/Sounds.h"

#include <QApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtEndian>
#include <array>
#include <cmath>
#include <memory>
#include <numbers>
#include <span>

namespace ui {
namespace {

using namespace Qt::Literals::StringLiterals;

struct Tone {
    double hertz;
    int ms;
};
constexpr std::array kSwipe{Tone{1320, 70}};
constexpr std::array kApproved{Tone{880, 90}, Tone{1320, 160}};
constexpr std::array kRefused{Tone{294, 160}, Tone{0, 60}, Tone{294, 240}};

constexpr std::span<const Tone> tonesOf(Sound sound) {
    switch (sound) {
        case Sound::Approved: return kApproved;
        case Sound::Refused: return kRefused;
        case Sound::Swipe: break;
    }
    return kSwipe;
}

constexpr int kSamplesPerSecond = 22050;
constexpr double kLoudest = 12000;
/// Each tone swells and fades so long, or it would crack.
constexpr int kFade = kSamplesPerSecond / 100;

template <typename Number>
void append(QByteArray* bytes, Number number) {
    const Number little = qToLittleEndian(number);
    bytes->append(reinterpret_cast<const char*>(&little), sizeof little);
}

QByteArray samples(std::span<const Tone> tones) {
    QByteArray result;
    for (const Tone& tone : tones) {
        const int count = kSamplesPerSecond * tone.ms / 1000;
        for (int i = 0; i < count; ++i) {
            const double edge = std::min(1.0, std::min(i, count - i) / double(kFade));
            const double wave = std::sin(2 * std::numbers::pi * tone.hertz * i / kSamplesPerSecond);
            append(&result, qint16(kLoudest * edge * wave));
        }
    }
    return result;
}

/// The tones as a WAV file: 16 bits, one channel.
QByteArray waveFile(std::span<const Tone> tones) {
    constexpr int kBytesPerSample = 2;
    const QByteArray data = samples(tones);
    QByteArray file = "RIFF";
    append(&file, quint32(36 + data.size()));
    file += "WAVEfmt ";
    append(&file, quint32(16));
    append(&file, quint16(1));
    append(&file, quint16(1));
    append(&file, quint32(kSamplesPerSecond));
    append(&file, quint32(kSamplesPerSecond * kBytesPerSample));
    append(&file, quint16(kBytesPerSample));
    append(&file, quint16(8 * kBytesPerSample));
    file += "data";
    append(&file, quint32(data.size()));
    return file + data;
}

/// The machine's player with its options; empty without one.
QStringList findPlayer() {
    for (const QStringList& player : {QStringList{u"pw-play"_s}, {u"paplay"_s}, {u"aplay"_s, u"-q"_s}}) {
        const QString program = QStandardPaths::findExecutable(player.first());
        if (!program.isEmpty()) return QStringList(program) + player.sliced(1);
    }
    return {};
}

/// The files of the sounds, made as they are first played.
class Player {
  public:
    /// False when there is nothing to play it with.
    bool play(Sound sound) {
        const QString path = folder_.filePath(QString::number(int(sound)) + u".wav"_s);
        if (player_.isEmpty() || !folder_.isValid() || !isWritten(path, sound)) return false;
        return QProcess::startDetached(player_.first(), player_.sliced(1) << path);
    }

  private:
    static bool isWritten(const QString& path, Sound sound) {
        QFile file(path);
        if (file.exists()) return true;
        const QByteArray wave = waveFile(tonesOf(sound));
        return file.open(QIODevice::WriteOnly) && file.write(wave) == wave.size() && file.flush();
    }

    QTemporaryDir folder_;
    QStringList player_ = findPlayer();
};

struct Sounds {
    bool areOn = false;
    std::unique_ptr<Player> player;  ///< Looked for at the first sound.
};

Sounds& sounds() {
    static Sounds sounds;
    return sounds;
}

}  // namespace

void setSounds(bool areOn) {
    sounds() = {areOn, nullptr};
}

void play(Sound sound) {
    if (!sounds().areOn) return;
    std::unique_ptr<Player>& player = sounds().player;
    if (!player) player = std::make_unique<Player>();
    if (!player->play(sound)) QApplication::beep();
}

}  // namespace ui
