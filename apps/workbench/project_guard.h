// What keeps a project file of the workbench safe from other writers: a lock
// beside the file (".NAME.lock", Qt's QLockFile) that a second workbench on
// the same file finds held, and the file's stamp on disk (modification time
// and size) as this workbench last read or wrote it, so that a change made
// by someone else is noticed before it would be overwritten.
#pragma once
#include <QDateTime>
#include <QLockFile>
#include <QString>
#include <memory>

namespace qx {

class ProjectGuard {
public:
    enum class LockResult {
        Taken,
        // Another process holds it: another workbench has the file open.
        HeldByOther,
        // No lock can be made there, a folder without write access say.
        Impossible,
    };
    // Takes the lock of the file; when it is not taken, the reason in words
    // names the holder or the cause.
    // A guard that is replaced or destroyed gives its lock back.
    LockResult Lock(const QString& path, QString& reason);

    // Remembers the file as it is on disk now.
    void Stamp(const QString& path);
    // True when the file on disk is no longer what was remembered: another
    // program wrote it, replaced it or removed it.
    bool ChangedOnDisk(const QString& path) const;

    // The lock file of a project file.
    static QString LockPathOf(const QString& path);

private:
    std::unique_ptr<QLockFile> lock_;
    QDateTime modified_;
    qint64 size_ = -1;
    bool stamped_ = false;
};

}  // namespace qx
