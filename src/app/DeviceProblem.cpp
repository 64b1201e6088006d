#include "app/DeviceProblem.h"

#include <stdlib.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <array>
#include <cerrno>

#include "platform/Device.h"

namespace app {
namespace {

using namespace Qt::Literals::StringLiterals;

/// As much as the database's shared memory takes when it is opened, and a slip's pages.
constexpr int kNeededPieces = 16;
using Piece = std::array<char, 4096>;

/// 0 when the folder takes a file of that size, else the reason as in errno.
int tryToWrite(const QString& folder, Sure sure) {
    QByteArray name = QFile::encodeName(folder) + "/.room-XXXXXX";
    const int file = ::mkstemp(name.data());
    if (file < 0) return errno;
    ::unlink(name.constData());
    int reason = 0;
    for (int i = 0; i < kNeededPieces && reason == 0; ++i) {
        const Piece piece{};
        const ssize_t written = ::write(file, piece.data(), piece.size());
        if (written != ssize_t(piece.size())) reason = written < 0 ? errno : ENOSPC;
    }
    if (reason == 0 && sure == Sure::Disk && ::fsync(file) != 0) reason = errno;
    ::close(file);
    return reason;
}

}  // namespace

QString deviceProblem(Sure sure) {
    const QString documents = QFileInfo(platform::device::path(platform::device::kDocumentsFolder)).path();
    for (const QString& folder : {platform::device::folder(), documents}) {
        if (!QFileInfo(folder).isDir())
            return u"자료 폴더가 없습니다..! 관리자에게 알려 주세요 : %1"_s.arg(folder);
    }
    switch (tryToWrite(documents, sure)) {
        case 0: return {};
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return u"저장 공간이 가득 차서 저장할 수 없습니다..! 관리자에게 알려 주세요 : %1"_s.arg(
                documents);
        default: return u"자료 폴더에 쓸 수 없습니다..! 관리자에게 알려 주세요 : %1"_s.arg(documents);
    }
}

}  // namespace app
