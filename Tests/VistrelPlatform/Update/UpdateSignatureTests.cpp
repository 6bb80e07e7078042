#include "VistrelPlatform/Network/QtNetworkServices.h"
#include "VistrelPlatform/Update/UpdateSignature.h"
#include "VistrelPlatform/Update/UpdateTestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

bool verifies(const QByteArray& content, qint64 length, const QByteArray& signature, const QString& key) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("archive"));
    writeFile(path, content);
    const auto raw = UpdateSignature::publicKey(key);
    return raw && UpdateSignature::verify(path, {length, signature, *raw}, QtNetworkServices());
}

} // namespace

TEST(UpdateSignature, agreesWithThePublishedExample) {
    // RFC 8032, 7.1, test 2.
    const QString key = QString::fromLatin1(
        QByteArray::fromHex("3d4017c3e843895a92b70aa74d1b7ebc9c982ccf2ec4968cc0cd55f12af4660c").toBase64());
    const QByteArray signature =
        QByteArray::fromHex("92a009a9f0d4cab8720e820b5f642540a2b27b5416503f8fb3762223ebdb69da"
                            "085ac1e43e15996e458f3613d0f11d8c387b2eaeb4302aeeb00d291612bb0c00");
    EXPECT_TRUE(verifies("\x72", 1, signature, key));
    EXPECT_FALSE(verifies("\x73", 1, signature, key));
}

TEST(UpdateSignature, anyDifferenceIsRefused) {
    const TestSigner signer;
    const QString key = signer.publicKey();
    const QByteArray content(100000, 'c');
    const QByteArray signature = signer.sign(content);
    ASSERT_TRUE(verifies(content, content.size(), signature, key));
    EXPECT_FALSE(verifies(content.chopped(1) + 'd', content.size(), signature, key));
    EXPECT_FALSE(verifies(content.chopped(1), content.size() - 1, signature, key));
    EXPECT_FALSE(verifies(content + 'x', content.size(), signature, key));
    EXPECT_FALSE(verifies(content.chopped(1), content.size(), signature, key));
    EXPECT_FALSE(verifies({}, 0, signer.sign({}), key));
    EXPECT_FALSE(verifies(content, content.size(), signature, TestSigner().publicKey()));
    EXPECT_FALSE(verifies(content, content.size(), signature.chopped(1), key));
    EXPECT_FALSE(verifies(content, content.size(), QByteArray(64, '\0'), key));
    for (const QString& bad : {QString(), QStringLiteral("?") + key, key.chopped(8), key + key})
        EXPECT_FALSE(UpdateSignature::publicKey(bad)) << bad.toStdString();
    EXPECT_TRUE(UpdateSignature::publicKey(key + QLatin1Char('\n')));
}
