#include "project_guard.h"

#include <QDir>
#include <QFileInfo>

namespace qx {

QString ProjectGuard::LockPathOf(const QString& path) {
    const QFileInfo file(path);
    return file.dir().filePath(QStringLiteral(".") + file.fileName() + QStringLiteral(".lock"));
}

ProjectGuard::LockResult ProjectGuard::Lock(const QString& path, QString& reason) {
    auto lock = std::make_unique<QLockFile>(LockPathOf(path));
    // A lock whose process is gone is stale at once; a live one never is.
    lock->setStaleLockTime(0);
    if (lock->tryLock(0)) {
        lock_ = std::move(lock);
        return LockResult::Taken;
    }
    qint64 pid = 0;
    QString host, application;
    switch (lock->error()) {
        case QLockFile::LockFailedError:
            if (lock->getLockInfo(&pid, &host, &application))
                reason = QStringLiteral("it is open in %1 (process %2 on %3)")
                             .arg(application.isEmpty() ? QStringLiteral("another program") : application)
                             .arg(pid)
                             .arg(host);
            else
                reason = QStringLiteral("another program holds its lock %1").arg(LockPathOf(path));
            return LockResult::HeldByOther;
        case QLockFile::PermissionError:
            reason = QStringLiteral("its folder cannot be written, so no lock can be made beside it");
            return LockResult::Impossible;
        default:
            reason = QStringLiteral("its lock %1 cannot be made").arg(LockPathOf(path));
            return LockResult::Impossible;
    }
}

void ProjectGuard::Stamp(const QString& path) {
    const QFileInfo file(path);
    stamped_ = true;
    modified_ = file.exists() ? file.lastModified() : QDateTime();
    size_ = file.exists() ? file.size() : -1;
}

bool ProjectGuard::ChangedOnDisk(const QString& path) const {
    if (!stamped_) return false;
    const QFileInfo file(path);
    if (!file.exists()) return size_ >= 0;
    return file.lastModified() != modified_ || file.size() != size_;
}

}  // namespace qx
