#pragma once

#include "VistrelPlatform/Result.h"
#include "VistrelPlatform/System/FileDescriptor.h"

/// A part of the program in a file of its own, loaded when it is first needed and then for good. Main thread.
/// The file is held from the beginning, so that an update cannot put another one in its place.
class LoadableModule {
public:
    /// Beside the folder of the executable, in the build tree as in an installation.
    static QString folderOfRunningProgram();

    explicit LoadableModule(const QString& name, const QString& folder = folderOfRunningProgram());

    /// What the module implements, which is for the caller to know.
    template<class Contract>
    Result<Contract*> get() {
        return load().map([](void* implementation) { return static_cast<Contract*>(implementation); });
    }

private:
    Result<void*> load();
    Result<void*> open();

    QByteArray path;
    FileDescriptor file;
    void* loaded = nullptr;
};
