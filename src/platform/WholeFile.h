#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <optional>

namespace platform {

/// A small file that is replaced as a whole: a kill, a full disk or a loss of power leaves the content of
/// before or the new one, never a part. Only its owner may read it.
class WholeFile {
  public:
    enum class IfThere {
        Replace,
        Keep,  ///< A file that is there stays, and taking its name fails.
    };

    /// The file at that path, in a folder that must be there. One that the path links to is meant itself.
    explicit WholeFile(const QString& path);
    /// Removes what has not taken its name.
    ~WholeFile();
    Q_DISABLE_COPY_MOVE(WholeFile)

    /// Puts the content on the disk beside the file, once; others who write the file wait until this object
    /// goes. False, with the reason in errorText(), when that fails.
    bool write(QByteArrayView content) { return begin(content) && sync(); }
    /// The same in two steps, so that the disk may work on several files at once. A file that takes its name
    /// without sync() is whole after a kill; a loss of power may leave an empty one.
    bool begin(QByteArrayView content);
    bool sync();

    /// When the content was written, as the file will tell, in milliseconds since 1970.
    qint64 modified() const;

    /// Gives what was written the file's name and puts the folder on the disk. False, with the reason in
    /// errorText(), when that fails; the file is as it was then. Only when the folder alone cannot be put on
    /// the disk the new file stands, and a loss of power may bring the old one back.
    bool takeName(IfThere ifThere = IfThere::Replace) { return takeNameOnly(ifThere) && syncFolder(); }
    /// The same in two steps: files of one folder need it on the disk once.
    bool takeNameOnly(IfThere ifThere = IfThere::Replace);
    bool syncFolder();

    /// The system's reason for the failure, such as "No space left on device".
    const QString& errorText() const { return error_; }

  private:
    bool open();
    bool fail();
    void close();

    QByteArray path_;
    QByteArray unfinished_;
    int descriptor_ = -1;
    QString error_;
};

/// Writes a file as a whole. False, with the system's reason in `error` if that is given, when the file is as
/// it was.
bool writeWholeFile(const QString& path, QByteArrayView content, QString* error = nullptr,
                    WholeFile::IfThere ifThere = WholeFile::IfThere::Replace);

/// Everything in a file; nothing, with the system's reason in `error` if that is given, when it cannot be
/// read.
std::optional<QByteArray> readWholeFile(const QString& path, QString* error = nullptr);

}  // namespace platform
