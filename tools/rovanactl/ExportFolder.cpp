#include "rovanactl/ExportFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QDir>
#include <QFileInfo>

#include "platform/Sync.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

QString placeOf(const QString& path) {
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(QFileInfo(path).absoluteFilePath()) : canonical;
}

}  // namespace

ExportFolder::ExportFolder(const QString& path, const QStringList& names)
    : path_(placeOf(path)),
      names_(names),
      unfinished_(path_ + u".export-new"_s),
      replaced_(path_ + u".export-old"_s) {}

ExportFolder::~ExportFolder() {
    if (parent_ < 0) return;
    files_.clear();
    removeFolder(unfinished_);
    ::close(parent_);
}

QString ExportFolder::begin() {
    const QString around = QFileInfo(path_).absolutePath();
    if (!QDir().mkpath(around)) return u"the folder %1 cannot be made"_s.arg(around);
    const int parent = ::open(QFile::encodeName(around).constData(), O_RDONLY | O_CLOEXEC);
    if (parent < 0) return u"the folder %1 cannot be read"_s.arg(around);
    if (::flock(parent, LOCK_EX | LOCK_NB) != 0) {
        ::close(parent);
        return u"another export is writing below %1; wait for it"_s.arg(around);
    }
    parent_ = parent;
    // A run that was stopped between its two renamings left the earlier files under the other name.
    if (!QFileInfo::exists(path_)) QFile::rename(replaced_, path_);
    removeFolder(replaced_);
    removeFolder(unfinished_);
    if (QFileInfo::exists(path_) && !QFileInfo(path_).isDir()) return u"%1 is no folder"_s.arg(path_);
    for (const QString& name :
         QDir(path_).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot)) {
        if (!names_.contains(name)) {
            return u"%1 holds %2 and more than an export; name a folder that is for the export alone"_s.arg(
                path_, name);
        }
    }
    if (!QDir().mkdir(unfinished_)) return u"the folder %1 cannot be made"_s.arg(unfinished_);
    for (const QString& name : names_) {
        files_.push_back(std::make_unique<QFile>(QDir(unfinished_).filePath(name)));
        if (!files_.back()->open(QIODevice::WriteOnly)) {
            return u"%1 cannot be written: %2"_s.arg(files_.back()->fileName(), files_.back()->errorString());
        }
    }
    return {};
}

void ExportFolder::write(std::size_t file, QByteArrayView bytes) {
    isWritten_ &= files_[file]->write(bytes.data(), bytes.size()) == bytes.size();
}

QString ExportFolder::commit() {
    for (const auto& file : files_) {
        isWritten_ = isWritten_ && file->flush() && ::fsync(file->handle()) == 0;
        file->close();
    }
    isWritten_ = isWritten_ && platform::syncToDisk(unfinished_);
    if (!isWritten_) return u"the files cannot be written below %1; is its disk full?"_s.arg(unfinished_);

    const bool isReplacing = QFileInfo::exists(path_);
    if (isReplacing && !QFile::rename(path_, replaced_)) {
        return u"%1 cannot be replaced; name a folder below it"_s.arg(path_);
    }
    if (!QFile::rename(unfinished_, path_)) {
        if (isReplacing) QFile::rename(replaced_, path_);
        return u"%1 cannot be renamed to %2"_s.arg(unfinished_, path_);
    }
    if (::fsync(parent_) != 0) return u"%1 is written, but the disk may not keep it"_s.arg(path_);
    removeFolder(replaced_);
    return {};
}

void ExportFolder::removeFolder(const QString& path) const {
    for (const QString& name : names_) QFile::remove(QDir(path).filePath(name));
    QDir().rmdir(path);
}

}  // namespace admin
