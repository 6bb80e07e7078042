#include "Support/TestFiles.h"
#include "VistrelPlatform/DesktopLibrary.h"
#include "VistrelPlatform/NetworkServices.h"
#include "VistrelPlatform/System/LoadableModule.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString builtNetwork = QStringLiteral(VISTREL_MODULE_FOLDER "/network.so");

} // namespace

TEST(LoadableModule, whatWasBuiltLoadsAndWorks) {
    LoadableModule network(u"network"_s, QStringLiteral(VISTREL_MODULE_FOLDER));
    const auto services = network.get<NetworkServices>();
    ASSERT_TRUE(services) << services.error().description.toStdString();
    EXPECT_FALSE((*services)->isSigned("content", "signature", QByteArray(32, 'k')));
    EXPECT_NE((*services)->makeTransfer(), nullptr);
    EXPECT_EQ(*network.get<NetworkServices>(), *services);

    LoadableModule desktop(u"desktop"_s, QStringLiteral(VISTREL_MODULE_FOLDER));
    const auto library = desktop.get<DesktopLibrary>();
    ASSERT_TRUE(library) << library.error().description.toStdString();
    EXPECT_EQ((*library)->activation(u"no.such.desktop"_s), std::nullopt);
}

TEST(LoadableModule, whatIsNotTheProgramsOwnIsAnErrorThatNamesTheFile) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"part.so"_s);
    const QByteArray whole = readFile(builtNetwork);
    QByteArray otherVersion = whole;
    otherVersion.replace("vistrelModule", "anotherModule");
    const struct {
        const char* name;
        std::optional<QByteArray> content;
        const char* reason;
    } rows[] = {
        {"missing", std::nullopt, "no such file"},
        {"empty", QByteArray(), "damaged"},
        {"text", QByteArray(5000, 'x'), "damaged"},
        {"cutShort", whole.left(whole.size() / 2), "damaged"},
        {"lastByteMissing", whole.chopped(1), "damaged"},
        {"bentHeader", whole.left(4) + QByteArray(12, 'x') + whole.mid(16), "ELF"},
        {"anotherLibrary", otherVersion, "another version"},
    };
    for (const auto& row : rows) {
        QFile::remove(path);
        if (row.content)
            writeFile(path, *row.content);
        LoadableModule module(u"part"_s, folder.path());
        const auto services = module.get<NetworkServices>();
        ASSERT_FALSE(services) << row.name;
        const std::string description = services.error().description.toStdString();
        EXPECT_NE(description.find(path.toStdString()), std::string::npos) << description;
        EXPECT_NE(description.find(row.reason), std::string::npos) << row.name << ": " << description;
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
