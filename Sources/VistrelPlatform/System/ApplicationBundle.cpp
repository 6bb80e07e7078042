#include "VistrelPlatform/System/ApplicationBundle.h"

#include "VistrelPlatform/System/Files.h"
#include "VistrelPlatform/System/Log.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>

#include <cerrno>

namespace {
constexpr qint64 largestInformation = 65536;
}

ApplicationBundle::ApplicationBundle() : ApplicationBundle(QCoreApplication::applicationFilePath()) {}

ApplicationBundle::ApplicationBundle(const QString& executablePath) {
    const QString path = QDir::cleanPath(QFileInfo(executablePath).absolutePath() +
                                         QStringLiteral("/../share/vistrel/Info.json"));
    const Result<QByteArray> bytes = Files::read(path, largestInformation);
    if (!bytes) {
        if (bytes.error().code != ENOENT && bytes.error().code != ENOTDIR)
            qCWarning(vistrelLog).noquote() << path << bytes.error().description;
        return;
    }
    const QJsonDocument document = QJsonDocument::fromJson(*bytes);
    if (!document.isObject()) {
        qCWarning(vistrelLog).noquote() << path << "is not a JSON object";
        return;
    }
    installed = true;
    information = document.object();
}

std::optional<QString> ApplicationBundle::string(const QString& key) const {
    const QString text = information.value(key).toString();
    if (text.isEmpty())
        return std::nullopt;
    return text;
}
