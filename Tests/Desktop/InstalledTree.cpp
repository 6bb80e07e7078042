#include "Desktop/InstalledTree.h"

#include "Support/TestFiles.h"

#include <QJsonDocument>
#include <QProcess>

#include <gtest/gtest.h>

InstalledTree::InstalledTree(const QString& folder) : prefix(folder) {
    run(QStringLiteral(VISTREL_CMAKE),
        {QStringLiteral("--install"), QStringLiteral(VISTREL_BUILD_DIR), QStringLiteral("--prefix"), prefix});
    // A hundred megabytes: what the program itself writes safely would wait behind them.
    run(QStringLiteral("sync"), {QStringLiteral("-f"), prefix});
}

InstalledTree::InstalledTree(const InstalledTree& original, const QString& folder) : prefix(folder) {
    run(QStringLiteral("cp"), {QStringLiteral("-a"), original.prefix, folder});
}

QJsonObject InstalledTree::information() const {
    return QJsonDocument::fromJson(readFile(prefix + QStringLiteral("/share/vistrel/Info.json"))).object();
}

void InstalledTree::inform(const QJsonObject& values) const {
    QJsonObject all = information();
    for (auto value = values.begin(); value != values.end(); ++value)
        all.insert(value.key(), value.value());
    writeFile(prefix + QStringLiteral("/share/vistrel/Info.json"), QJsonDocument(all).toJson());
}

QByteArray InstalledTree::run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(120000)) << program.toStdString();
    EXPECT_EQ(process.exitCode(), 0) << program.toStdString() << process.readAllStandardError().toStdString();
    return process.readAllStandardOutput();
}
