#include "VistrelPlatform/Update/AppImageReplacement.h"

#include "VistrelPlatform/Update/ReplacementFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

namespace {

Result<void> prepare(const QString& staged, const QString& folder, const UpdateVersion& version) {
    const QString information = QStringLiteral("usr/share/vistrel/Info.json");
    auto extracted =
        ReplacementFiles::run(staged, {QStringLiteral("--appimage-extract"), information}, folder);
    if (!extracted)
        return extracted;
    if (auto checked =
            ReplacementFiles::checkVersion(folder + QStringLiteral("/squashfs-root/") + information, version);
        !checked)
        return checked;
    return ReplacementFiles::flush(staged);
}

} // namespace

Result<QString> AppImageReplacement::replace(const QString& appImage, const QString& archive,
                                             const UpdateVersion& version) {
    ReplacementFiles::removeStagingFolders(appImage);
    const auto folder = ReplacementFiles::stagingFolder(appImage);
    if (!folder)
        return tl::unexpected(folder.error());
    const QString staged = *folder + QStringLiteral("/Vistrel.AppImage");
    const auto discard = [&](const Error& error) {
        QDir(*folder).removeRecursively();
        return tl::unexpected(error);
    };

    QFile source(archive);
    if (!source.copy(staged))
        return discard(ReplacementFiles::failure(source.errorString()));
    const QFile::Permissions executable =
        QFile::permissions(appImage) | QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    if (!QFile::setPermissions(staged, executable))
        return discard(ReplacementFiles::systemFailure(staged));
    if (const auto prepared = prepare(staged, *folder, version); !prepared)
        return discard(prepared.error());
    if (std::rename(QFile::encodeName(staged).constData(), QFile::encodeName(appImage).constData()) != 0)
        return discard(ReplacementFiles::systemFailure(appImage));
    QDir(*folder).removeRecursively();
    // The new file is in place whether or not its folder entry has reached the disk yet.
    (void)ReplacementFiles::flush(QFileInfo(appImage).path());
    return appImage;
}
