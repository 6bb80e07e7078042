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
