#pragma once

#include <QByteArray>
#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

/// Forbids writing into a folder for the length of a test. The superuser may write everywhere, so a
/// test run as one goes on as nobody meanwhile.
class ReadOnlyFolder {
public:
    /// `below` names a folder inside the test's own `path`; without it, `path` itself is meant.
    explicit ReadOnlyFolder(const QString& path, const QString& below = QString())
        : name(QFile::encodeName(QDir(path).filePath(below))) {
        if (::geteuid() == 0) {
            QDirIterator entries(path, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                                 QDirIterator::Subdirectories);
            while (entries.hasNext())
                giveAway(QFile::encodeName(entries.next()));
            giveAway(QFile::encodeName(path));
            dropped = ::seteuid(nobody) == 0;
        }
        restricted = ::chmod(name.constData(), 0555) == 0;
    }
    ~ReadOnlyFolder() {
        if (dropped && ::seteuid(0) != 0)
            qFatal("the test cannot become the superuser again");
        ::chmod(name.constData(), 0700);
    }
    ReadOnlyFolder(const ReadOnlyFolder&) = delete;
    ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;

    bool inForce() const {
        return restricted && ::faccessat(AT_FDCWD, name.constData(), W_OK, AT_EACCESS) != 0;
    }

private:
    static constexpr uid_t nobody = 65534;
    void giveAway(const QByteArray& path) {
        if (::lchown(path.constData(), nobody, static_cast<gid_t>(-1)) != 0)
            restricted = false;
    }

    QByteArray name;
    bool dropped = false;
    bool restricted = false;
};
