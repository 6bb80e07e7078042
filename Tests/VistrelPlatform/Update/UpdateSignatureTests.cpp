#include "VistrelPlatform/Update/UpdateSignature.h"
#include "VistrelPlatform/Update/UpdateTestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class UpdateSignatureTests : public ::testing::Test {
protected:
    bool verifies(const QByteArray& content, qint64 length, const QByteArray& signature, const QString& key) {
        const QString path = folder.filePath(QStringLiteral("archive"));
        writeFile(path, content);
        const auto raw = UpdateSignature::publicKey(key);
        return raw && UpdateSignature::verify(path, length, signature, *raw);
    }

    QTemporaryDir folder;
};

TEST_F(UpdateSignatureTests, agreesWithThePublishedExample) {
    // RFC 8032, 7.1, test 2.
    const QString key = QString::fromLatin1(
        QByteArray::fromHex("3d4017c3e843895a92b70aa74d1b7ebc9c982ccf2ec4968cc0cd55f12af4660c").toBase64());
    const QByteArray signature =
        QByteArray::fromHex("92a009a9f0d4cab8720e820b5f642540a2b27b5416503f8fb3762223ebdb69da"
                            "085ac1e43e15996e458f3613d0f11d8c387b2eaeb4302aeeb00d291612bb0c00");
    EXPECT_TRUE(verifies("\x72", 1, signature, key));
    EXPECT_FALSE(verifies("\x73", 1, signature, key));
}

TEST_F(UpdateSignatureTests, anyDifferenceIsRefused) {
    const TestSigner signer;
    const QByteArray content(100000, 'c');
    const QByteArray signature = signer.sign(content);
    ASSERT_TRUE(verifies(content, content.size(), signature, signer.publicKey()));

    QByteArray changed = content;
    changed[99999] = 'd';
    EXPECT_FALSE(verifies(changed, changed.size(), signature, signer.publicKey()));
    EXPECT_FALSE(verifies(content.chopped(1), content.size() - 1, signature, signer.publicKey()));
    EXPECT_FALSE(verifies(content + 'x', content.size(), signature, signer.publicKey()));
    EXPECT_FALSE(verifies(content.chopped(1), content.size(), signature, signer.publicKey()));
    EXPECT_FALSE(verifies({}, 0, signer.sign({}), signer.publicKey()));
    EXPECT_FALSE(verifies(content, content.size(), signature, TestSigner().publicKey()));
    EXPECT_FALSE(verifies(content, content.size(), signature.chopped(1), signer.publicKey()));
    QByteArray bent = signature;
    bent[0] = static_cast<char>(bent[0] ^ 1);
    EXPECT_FALSE(verifies(content, content.size(), bent, signer.publicKey()));
    EXPECT_FALSE(verifies(content, content.size(), QByteArray(64, '\0'), signer.publicKey()));
}

TEST_F(UpdateSignatureTests, keysMustBeKeys) {
    const QString good = TestSigner().publicKey();
    EXPECT_TRUE(UpdateSignature::publicKey(good));
    EXPECT_TRUE(UpdateSignature::publicKey(good + QLatin1Char('\n')));
    for (const QString& bad : {QString(), QStringLiteral("?") + good, good.chopped(8), good + good})
        EXPECT_FALSE(UpdateSignature::publicKey(bad)) << bad.toStdString();
}

TEST_F(UpdateSignatureTests, archivesOfTheSigningScriptAreAccepted) {
    QDir root(QCoreApplication::applicationDirPath());
    while (!root.exists(QStringLiteral("Scripts/sign-update")) && root.cdUp()) {
    }
    const QString script = root.filePath(QStringLiteral("Scripts/sign-update"));
    const auto output = [&](const QStringList& arguments) {
        QProcess process;
        process.start(script, arguments);
        process.waitForFinished();
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
        return QString::fromLatin1(process.readAllStandardOutput()).trimmed();
    };
    const QString key = folder.filePath(QStringLiteral("key"));
    const QString archive = folder.filePath(QStringLiteral("archive"));
    const QByteArray content("content of an archive");
    writeFile(archive, content);
    const QString publicKey = output({QStringLiteral("keys"), key});
    EXPECT_EQ(QFile::permissions(key) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    EXPECT_EQ(output({QStringLiteral("public"), key}), publicKey);
    const QString attributes = output({QStringLiteral("sign"), key, archive});
    EXPECT_TRUE(attributes.endsWith(QStringLiteral("length=\"%1\"").arg(content.size())));
    const QByteArray signature =
        QByteArray::fromBase64(attributes.section(QLatin1Char('"'), 1, 1).toLatin1());
    EXPECT_TRUE(verifies(content, content.size(), signature, publicKey));
}

} // namespace
