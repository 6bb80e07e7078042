#include "Support/TestFiles.h"
#include "VistrelPlatform/NetworkServices.h"
#include "VistrelPlatform/System/LoadableModule.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString builtNetwork = QStringLiteral(VISTREL_MODULE_FOLDER "/network.so");

} // namespace

TEST(LoadableModule, whatIsNotTheProgramsOwnIsAnErrorThatNamesTheFile) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"part.so"_s);
    const QByteArray whole = readFile(builtNetwork);
    QByteArray otherVersion = whole;
    otherVersion.replace("vistrelModule", "anotherModule");
    const std::tuple<const char*, std::optional<QByteArray>, const char*> rows[] = {
        {"missing", std::nullopt, "no such file"},
        {"empty", QByteArray(), "damaged"},
        {"text", QByteArray(5000, 'x'), "damaged"},
        {"cutShort", whole.left(whole.size() / 2), "damaged"},
        {"lastByteMissing", whole.chopped(1), "damaged"},
        {"bentHeader", whole.left(4) + QByteArray(12, 'x') + whole.mid(16), "ELF"},
        {"anotherLibrary", otherVersion, "another version"},
    };
    for (const auto& [name, content, reason] : rows) {
        QFile::remove(path);
        if (content)
            writeFile(path, *content);
        LoadableModule module(u"part"_s, folder.path());
        const auto services = module.get<NetworkServices>();
        ASSERT_FALSE(services) << name;
        const std::string description = services.error().description.toStdString();
        EXPECT_NE(description.find(path.toStdString()), std::string::npos) << description;
        EXPECT_NE(description.find(reason), std::string::npos) << name << ": " << description;
    }
    // One that was missing may come back.
    QFile::remove(path);
    LoadableModule module(u"part"_s, folder.path());
    EXPECT_FALSE(module.get<NetworkServices>());
    writeFile(path, whole);
    EXPECT_TRUE(module.get<NetworkServices>());
}

TEST(LoadableModule, anUpdateThatTakesItsPlaceDoesNotReachTheRunningProgram) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"part.so"_s);
    writeFile(path, readFile(builtNetwork));
    LoadableModule module(u"part"_s, folder.path());
    QFile::remove(path);
    writeFile(path, "of the next version");
    EXPECT_TRUE(module.get<NetworkServices>());
}
