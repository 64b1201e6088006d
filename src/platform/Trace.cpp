#include "platform/Trace.h"

#include <QFile>
#include <QLoggingCategory>
#include <memory>

#include "platform/Clock.h"
#include "platform/Device.h"

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

Q_LOGGING_CATEGORY(traceCategory, "rovana.trace", QtWarningMsg)

/// The log file and its one predecessor.
class BoundedLog {
  public:
    BoundedLog(const QString& path, qint64 limitBytes) : file_(path), limit_(limitBytes) { open(); }

    bool isOpen() const { return file_.isOpen(); }

    void write(QStringView text) {
        if (!file_.isOpen()) return;
        QByteArray line = clock::now().toString(u"yyyy-MM-dd hh:mm:ss.zzz "_s).toUtf8() + text.toUtf8();
        if (!line.endsWith('\n')) line += '\n';
        if (file_.size() + line.size() > limit_) rotate();
        file_.write(line);
        file_.flush();
    }

  private:
    void rotate() {
        const QString path = file_.fileName();
        file_.close();
        QFile::remove(path + u".1"_s);
        // A log that cannot be put aside goes on growing rather than lose what it holds.
        const bool isAside = QFile::rename(path, path + u".1"_s);
        if (!isAside) limit_ += limit_;
        file_.setFileName(path);
        open();
    }

    /// Only its owner can read a log, from its first moment on.
    void open() {
        file_.open(QIODevice::WriteOnly | QIODevice::Append, QFile::ReadOwner | QFile::WriteOwner);
        file_.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    }

    QFile file_;
    qint64 limit_;
};

std::unique_ptr<BoundedLog>& log() {
    static std::unique_ptr<BoundedLog> instance;
    return instance;
}

std::function<void(QStringView)>& observer() {
    static std::function<void(QStringView)> function;
    return function;
}

}  // namespace

void trace(QStringView text) {
    qCDebug(traceCategory).noquote() << text.trimmed();
    if (log()) log()->write(text);
    if (observer()) observer()(text);
}

bool openLog(qint64 limitBytes) {
    log() = std::make_unique<BoundedLog>(device::folder() + u"/rovana.log"_s, limitBytes);
    if (log()->isOpen()) return true;
    log().reset();
    return false;
}

void setTraceObserver(std::function<void(QStringView)> function) {
    observer() = std::move(function);
}

}  // namespace platform
