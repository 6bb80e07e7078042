#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

/// What the installed program says about itself: `share/vistrel/Info.json` beside the folder of the
/// executable. A program run from its build tree has none and counts as a bare executable. A value.
class ApplicationBundle {
public:
    /// Of the running program.
    ApplicationBundle();
    explicit ApplicationBundle(const QString& executablePath);

    bool isInstalled() const { return installed; }
    /// Absent when the key is missing, empty or no text.
    std::optional<QString> string(const QString& key) const;

    // Keys of Info.json.
    static inline const QString shortVersionKey = QStringLiteral("CFBundleShortVersionString");
    static inline const QString feedURLKey = QStringLiteral("SUFeedURL");
    static inline const QString publicEDKeyKey = QStringLiteral("SUPublicEDKey");
    static inline const QString reportURLKey = QStringLiteral("VistrelReportURL");
    static inline const QString makerKey = QStringLiteral("VistrelMaker");

private:
    bool installed = false;
    QJsonObject information;
};
