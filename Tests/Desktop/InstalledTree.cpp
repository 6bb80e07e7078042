#include "Desktop/InstalledTree.h"

#include <QFile>
#include <QJsonDocument>
#include <QProcess>

#include <gtest/gtest.h>

InstalledTree::InstalledTree(const QString& folder) : prefix(folder) {
    run(QStringLiteral(VISTREL_CMAKE),
        {QStringLiteral("--install"), QStringLiteral(VISTREL_BUILD_DIR), QStringLiteral("--prefix"), prefix});
}

InstalledTree InstalledTree::copied(const QString& folder) const {
    run(QStringLiteral("cp"), {QStringLiteral("-a"), prefix, folder});
    return InstalledTree(Existing{folder});
}

QJsonObject InstalledTree::information() const {
    QFile file(prefix + QStringLiteral("/share/vistrel/Info.json"));
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
}

void InstalledTree::inform(const QJsonObject& values) const {
    QJsonObject all = information();
    for (auto value = values.begin(); value != values.end(); ++value)
        all.insert(value.key(), value.value());
    QFile file(prefix + QStringLiteral("/share/vistrel/Info.json"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QJsonDocument(all).toJson());
}

QByteArray InstalledTree::run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(120000)) << program.toStdString();
    EXPECT_EQ(process.exitCode(), 0) << program.toStdString() << process.readAllStandardError().toStdString();
    return process.readAllStandardOutput();
}
