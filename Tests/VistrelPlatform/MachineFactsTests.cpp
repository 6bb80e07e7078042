#include "VistrelPlatform/System/AtomicFile.h"
#include "VistrelPlatform/System/MachineFacts.h"
#include "VistrelPlatform/System/UuidText.h"

#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct TextCase {
    const char* name;
    QByteArray text;
    const char* expected; // null when there is none
};

std::optional<QString> expectation(const TextCase& row) {
    return row.expected == nullptr ? std::nullopt : std::optional(QString::fromLatin1(row.expected));
}

TEST(MachineFactsTests, versionTriples) {
    const TextCase rows[] = {
        {"one", "12", "12.0.0"},       {"two", "22.04", "22.4.0"},
        {"three", "14.5.1", "14.5.1"}, {"kernel", "6.1.0-18-amd64", "6.1.0"},
        {"four", "1.2.3.4", "1.2.3"},  {"rolling", "rolling", nullptr},
        {"empty", "", nullptr},        {"dangling", "7.", "7.0.0"},
    };
    for (const TextCase& row : rows)
        EXPECT_EQ(MachineFacts::versionTriple(QString::fromLatin1(row.text)), expectation(row)) << row.name;
}

TEST(MachineFactsTests, productNames) {
    const QByteArray longest(126, 'x');
    const TextCase rows[] = {
        {"lineFeed", "20XW0055GE\n", "20XW0055GE"},
        {"zeroByte", QByteArray("Mac14,2\0rest", 12), "Mac14,2"},
        {"blank", " \n", nullptr},
        {"longest", longest + '\n', longest.constData()},
        {"tooLong", longest + "x\n", nullptr},
        {"empty", "", nullptr},
    };
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("product_name"));
    EXPECT_EQ(MachineFacts::productNameIn(path), std::nullopt);
    for (const TextCase& row : rows) {
        ASSERT_TRUE(writeAtomically(path, row.text));
        EXPECT_EQ(MachineFacts::productNameIn(path), expectation(row)) << row.name;
    }
}

TEST(MachineFactsTests, thisMachineHasAVersionAndAnArchitecture) {
    const MachineFacts facts = MachineFacts::current();
    EXPECT_TRUE(
        QRegularExpression(QStringLiteral("^\\d+\\.\\d+\\.\\d+$")).match(facts.systemVersion).hasMatch());
    EXPECT_FALSE(facts.architecture.isEmpty());
}

TEST(UuidTextTests, onlyTheCanonicalTextIsAnIdentifier) {
    const QString lower = QStringLiteral("0e984725-c51c-4bf4-9960-e1c80e27aba0");
    const std::optional<QUuid> uuid = UuidText::parse(lower);
    ASSERT_TRUE(uuid);
    EXPECT_EQ(UuidText::upperCase(*uuid), lower.toUpper());
    EXPECT_EQ(UuidText::parse(lower.toUpper()), uuid);
    EXPECT_TRUE(UuidText::parse(QStringLiteral("00000000-0000-0000-0000-000000000000")));
    for (const QString& text :
         {QString(), QStringLiteral("x"), QStringLiteral("{%1}").arg(lower), lower.left(35), lower + u'0',
          lower + u' ', QString(lower).replace(u'-', u'_')})
        EXPECT_FALSE(UuidText::parse(text)) << text.toStdString();
}

} // namespace
