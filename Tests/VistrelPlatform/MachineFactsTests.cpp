#include "Support/TestFiles.h"
#include "VistrelPlatform/System/MachineFacts.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct TextCase {
    const char* name;
    QByteArray text;
    QByteArray expected; // empty when there is none
};

QByteArray utf8(const std::optional<QString>& text) {
    return text.value_or(QString()).toUtf8();
}

} // namespace

TEST(MachineFacts, versionTriples) {
    const TextCase rows[] = {
        {"one", "12", "12.0.0"},
        {"two", "22.04", "22.4.0"},
        {"three", "14.5.1", "14.5.1"},
        {"kernel", "6.1.0-18-amd64", "6.1.0"},
        {"four", "1.2.3.4", "1.2.3"},
        {"rolling", "rolling", ""},
        {"empty", "", ""},
        {"dangling", "7.", "7.0.0"},
    };
    for (const TextCase& row : rows)
        EXPECT_EQ(utf8(MachineFacts::versionTriple(QString::fromLatin1(row.text))), row.expected) << row.name;
    const QString own = MachineFacts::current().systemVersion;
    EXPECT_EQ(utf8(MachineFacts::versionTriple(own)), own.toUtf8()) << "this machine's";
}

TEST(MachineFacts, productNames) {
    const QByteArray longest(126, 'x');
    const TextCase rows[] = {
        {"lineFeed", "20XW0055GE\n", "20XW0055GE"},
        {"zeroByte", QByteArray("Mac14,2\0rest", 12), "Mac14,2"},
        {"blank", " \n", ""},
        {"longest", longest + '\n', longest},
        {"tooLong", longest + "x\n", ""},
        {"empty", "", ""},
    };
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("product_name"));
    EXPECT_EQ(MachineFacts::productNameIn(path), std::nullopt);
    for (const TextCase& row : rows) {
        writeFile(path, row.text);
        EXPECT_EQ(utf8(MachineFacts::productNameIn(path)), row.expected) << row.name;
    }
}
