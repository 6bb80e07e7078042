#include "VistrelPlatform/System/LoadableModule.h"

#include "VistrelPlatform/System/Log.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>

namespace {

/// Parts of the program itself.
const QString domain = QStringLiteral("program");

constexpr const char* entry = "vistrelModule";

FileDescriptor openFile(const QByteArray& path) {
    return FileDescriptor(::open(path.constData(), O_RDONLY | O_CLOEXEC));
}

/// The section table is a library's end. The system stops a program that has mapped more than there is.
bool isWhole(int descriptor) {
    ElfW(Ehdr) header{};
    struct stat facts {};
    return ::pread(descriptor, &header, sizeof header, 0) == sizeof header &&
           ::fstat(descriptor, &facts) == 0 &&
           std::memcmp(static_cast<const unsigned char*>(header.e_ident), ELFMAG, SELFMAG) == 0 &&
           header.e_shoff + ElfW(Off){header.e_shentsize} * header.e_shnum <=
               static_cast<ElfW(Off)>(facts.st_size);
}

bool isAt(int descriptor, const QByteArray& path) {
    struct stat held {};
    struct stat named {};
    return ::fstat(descriptor, &held) == 0 && ::stat(path.constData(), &named) == 0 &&
           held.st_dev == named.st_dev && held.st_ino == named.st_ino;
}

} // namespace

QString LoadableModule::folderOfRunningProgram() {
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../lib/vistrel"));
}

LoadableModule::LoadableModule(const QString& name, const QString& folder)
    : path(QFile::encodeName(folder + u'/' + name + QStringLiteral(".so"))), file(openFile(path)) {}

Result<void*> LoadableModule::load() {
    if (loaded != nullptr)
        return loaded;
    if (!file.isOpen())
        file = openFile(path);
    Result<void*> opened = open();
    if (opened)
        loaded = *opened;
    else
        qCWarning(vistrelLog).noquote() << opened.error().description;
    // Loaded or not, another attempt begins with what lies there then.
    file.close();
    return opened;
}

Result<void*> LoadableModule::open() {
    const auto failed = [this](const QString& reason) {
        return tl::unexpected(Error{domain, 0,
                                    QStringLiteral("A part of Vistrel cannot be used: %1 (%2)")
                                        .arg(QFile::decodeName(path), reason)});
    };
    if (!file.isOpen())
        return failed(QStringLiteral("there is no such file"));
    if (!isWhole(file.get()))
        return failed(QStringLiteral("the file is damaged"));
    const QByteArray held = isAt(file.get(), path) ? path : "/proc/self/fd/" + QByteArray::number(file.get());
    void* library = ::dlopen(held.constData(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        return failed(QString::fromLocal8Bit(::dlerror()));
    using Entry = void* (*)(const char* version);
    const auto make = reinterpret_cast<Entry>(::dlsym(library, entry));
    if (void* implementation = make ? make(VISTREL_VERSION) : nullptr)
        return implementation;
    // Otherwise a better file under this name would not be looked at.
    ::dlclose(library);
    return failed(QStringLiteral("it belongs to another version"));
}
