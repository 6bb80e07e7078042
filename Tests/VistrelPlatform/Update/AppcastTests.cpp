#include "VistrelPlatform/Update/Appcast.h"
#include "VistrelPlatform/Update/UpdateTestSupport.h"

#include <gtest/gtest.h>

namespace {

QByteArray item(const QByteArray& enclosure, const QByteArray& children = {}) {
    return "<item>" + children + "<enclosure " + enclosure + "/></item>";
}

QByteArray enclosure(const QByteArray& version, const QByteArray& more = {}) {
    return "url=\"https://example.org/a\" length=\"10\" sparkle:version=\"" + version +
           "\" sparkle:edSignature=\"" + QByteArray(64, 's').toBase64() + "\" " + more;
}

QByteArray feed(const QByteArray& items) {
    return "<rss xmlns:sparkle=\"urn:vistrel:appcast\"><channel><title>T</title>" + items +
           "</channel></rss>";
}

struct VersionCase {
    const char* name;
    const char* a;
    const char* b;
    /// Less, equal, greater.
    int order;
};

class UpdateVersionTests : public ::testing::TestWithParam<VersionCase> {};

TEST_P(UpdateVersionTests, comparesNumberByNumber) {
    const auto a = UpdateVersion::parse(QString::fromLatin1(GetParam().a));
    const auto b = UpdateVersion::parse(QString::fromLatin1(GetParam().b));
    ASSERT_TRUE(a && b);
    EXPECT_EQ(*a < *b, GetParam().order < 0);
    EXPECT_EQ(*a == *b, GetParam().order == 0);
    EXPECT_EQ(*a > *b, GetParam().order > 0);
}

INSTANTIATE_TEST_SUITE_P(Versions, UpdateVersionTests,
                         ::testing::Values(VersionCase{"tenAfterNine", "1.9", "1.10", -1},
                                           VersionCase{"missingIsZero", "1", "1.0.0", 0},
                                           VersionCase{"leadingZeros", "1.02", "1.2", 0},
                                           VersionCase{"longerIsLater", "1.2.0.1", "1.2", 1},
                                           VersionCase{"firstNumberFirst", "2.0", "1.999999999", 1}),
                         [](const auto& entry) { return std::string(entry.param.name); });

TEST(UpdateVersionTests, refusesWhatIsNoVersion) {
    for (const char* text : {"", "1.", ".1", "1..2", "1.0b", "v1", " 1", "1 ", "1\n", "-1", "1.1234567890",
                             "1.2.3.4.5.6.7.8.9", "١"})
        EXPECT_FALSE(UpdateVersion::parse(QString::fromUtf8(text))) << text;
}

struct FeedCase {
    const char* name;
    QByteArray items;
    QStringList versions;
};

class AppcastItemTests : public ::testing::TestWithParam<FeedCase> {};

TEST_P(AppcastItemTests, keepsWhatCouldBeInstalledHere) {
    const auto items = Appcast::parse(feed(GetParam().items));
    ASSERT_TRUE(items) << items.error().description.toStdString();
    QStringList versions;
    for (const AppcastItem& each : *items)
        versions << each.version.text();
    EXPECT_EQ(versions, GetParam().versions);
}

QByteArray replaced(QByteArray text, const char* what, const char* with) {
    return item(text.replace(what, with));
}

INSTANTIATE_TEST_SUITE_P(
    Items, AppcastItemTests,
    ::testing::Values(
        FeedCase{"several",
                 item(enclosure("1.0")) + item(enclosure("1.1")),
                 {QStringLiteral("1.0"), QStringLiteral("1.1")}},
        FeedCase{"versionAsElement",
                 item(enclosure("9").replace("sparkle:version=\"9\"", ""),
                      "<sparkle:version> 1.2 </sparkle:version>"),
                 {QStringLiteral("1.2")}},
        FeedCase{"linux", item(enclosure("1.0", "sparkle:os=\"linux\"")), {QStringLiteral("1.0")}},
        FeedCase{"anotherSystem", item(enclosure("1.0", "sparkle:os=\"windows\"")), {}},
        FeedCase{"channelAsElement", item(enclosure("1.0"), "<sparkle:channel>beta</sparkle:channel>"), {}},
        FeedCase{"channelAsAttribute", item(enclosure("1.0", "sparkle:channel=\"beta\"")), {}},
        FeedCase{"noEnclosure", "<item><sparkle:version>3</sparkle:version></item>", {}},
        FeedCase{"plainAddress", replaced(enclosure("1.0"), "https:", "http:"), {}},
        FeedCase{"addressWithPassword", replaced(enclosure("1.0"), "https://", "https://a:b@"), {}},
        FeedCase{"noSignature", replaced(enclosure("1.0"), "sparkle:edSignature", "sparkle:other"), {}},
        FeedCase{"shortSignature",
                 replaced(enclosure("1.0"), "sparkle:edSignature=\"c3N", "sparkle:edSignature=\""),
                 {}},
        FeedCase{"noLength", replaced(enclosure("1.0"), "length=\"10\"", ""), {}},
        FeedCase{"zeroLength", replaced(enclosure("1.0"), "\"10\"", "\"0\""), {}},
        FeedCase{"hugeLength", replaced(enclosure("1.0"), "\"10\"", "\"99999999999\""), {}},
        FeedCase{"strangeVersion", item(enclosure("1.0-beta")), {}},
        FeedCase{"strangeMinimum", item(enclosure("1.0", "sparkle:minimumSystemVersion=\"new\"")), {}},
        FeedCase{"attributeOfNoPrefix", replaced(enclosure("1.0"), "sparkle:version", "version"), {}}),
    [](const auto& entry) { return std::string(entry.param.name); });

TEST(AppcastTests, readsEverythingThatIsShown) {
    const QByteArray children =
        "<title>x</title><sparkle:shortVersionString>Two &amp; a half</sparkle:shortVersionString>"
        "<link>https://example.org/notes</link>"
        "<description sparkle:format=\"plain-text\"><![CDATA[a <b> c]]></description>";
    const auto items =
        Appcast::parse(feed(item(enclosure("2.5", "sparkle:minimumSystemVersion=\"12.1\""), children)));
    ASSERT_TRUE(items && items->size() == 1);
    const AppcastItem& read = items->front();
    EXPECT_EQ(read.displayVersion, QStringLiteral("Two & a half"));
    EXPECT_EQ(read.minimumSystemVersion, UpdateVersion::parse(QStringLiteral("12.1")));
    EXPECT_EQ(read.archive, QUrl(QStringLiteral("https://example.org/a")));
    EXPECT_EQ(read.length, 10);
    EXPECT_EQ(read.signature, QByteArray(64, 's'));
    EXPECT_EQ(read.link, QUrl(QStringLiteral("https://example.org/notes")));
    EXPECT_EQ(read.notes, QStringLiteral("a <b> c"));
    EXPECT_FALSE(read.notesAreHtml);
}

struct BadFeedCase {
    const char* name;
    QByteArray text;
};

class BadFeedTests : public ::testing::TestWithParam<BadFeedCase> {};

TEST_P(BadFeedTests, isRefusedWhole) {
    const auto items = Appcast::parse(GetParam().text);
    ASSERT_FALSE(items);
    EXPECT_EQ(items.error().code, 1000);
}

QByteArray bomb() {
    QByteArray text = "<!DOCTYPE rss [<!ENTITY a \"aaaaaaaaaa\">";
    for (char name = 'b'; name < 'k'; ++name)
        text += QByteArray("<!ENTITY ") + name + " \"" +
                QByteArray(10, '?').replace("?", QByteArray("&") + char(name - 1) + ";") + "\">";
    return text + "]>" + feed("<item><description>&j;</description></item>");
}

INSTANTIATE_TEST_SUITE_P(
    Feeds, BadFeedTests,
    ::testing::Values(BadFeedCase{"empty", ""}, BadFeedCase{"noXml", "hello"},
                      BadFeedCase{"otherDocument", "<html><body/></html>"},
                      BadFeedCase{"truncated", feed(item(enclosure("1.0"))).chopped(30)},
                      BadFeedCase{"truncatedAtTheEnd", feed(item(enclosure("1.0"))).chopped(3)},
                      BadFeedCase{"twoDocuments", feed("") + feed("")}, BadFeedCase{"entityBomb", bomb()},
                      BadFeedCase{"documentType", "<!DOCTYPE rss SYSTEM \"file:///etc/passwd\">" + feed("")},
                      BadFeedCase{"unknownEntity", feed("<item><link>&passwd;</link></item>")},
                      BadFeedCase{
                          "unknownPrefix",
                          "<rss><channel><item><enclosure sparkle:version=\"1\"/></item></channel></rss>"},
                      BadFeedCase{"wrongEncoding", QByteArray(feed("<title>\xff\xfe</title>"))},
                      BadFeedCase{"longText", feed("<item><description>" + QByteArray(70000, 'x') +
                                                   "</description></item>")},
                      BadFeedCase{"manyItems", feed(QByteArray("<item/>").repeated(501))},
                      BadFeedCase{"tooLarge", feed(QByteArray(1100000, ' '))}),
    [](const auto& entry) { return std::string(entry.param.name); });

TEST(AppcastTests, deepElementsAreReadWithoutDeepCalls) {
    const QByteArray open = QByteArray("<a>").repeated(100000);
    EXPECT_FALSE(Appcast::parse(feed("<item><description>" + open)));
    const QByteArray deep = QByteArray("<a>").repeated(50000) + "x" + QByteArray("</a>").repeated(50000);
    EXPECT_TRUE(Appcast::parse(feed("<item><description>" + deep + "</description></item>")));
}

struct BestCase {
    const char* name;
    const char* current;
    const char* system;
    const char* skipped;
    const char* expected;
};

class AppcastBestTests : public ::testing::TestWithParam<BestCase> {};

TEST_P(AppcastBestTests, isTheHighestThatFits) {
    const auto items = Appcast::parse(feed(item(enclosure("1.9")) + item(enclosure("1.10")) +
                                           item(enclosure("2.0", "sparkle:minimumSystemVersion=\"13\"")) +
                                           item(enclosure("1.2"))));
    ASSERT_TRUE(items);
    const auto version = [](const char* text) { return UpdateVersion::parse(QString::fromLatin1(text)); };
    const auto found = Appcast::best(
        *items, {*version(GetParam().current), version(GetParam().system), version(GetParam().skipped)});
    EXPECT_EQ(found ? found->version.text() : QString(), QString::fromLatin1(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(Wishes, AppcastBestTests,
                         ::testing::Values(BestCase{"highest", "1.0", "13.0", "", "2.0"},
                                           BestCase{"systemTooOld", "1.0", "12.9", "", "1.10"},
                                           BestCase{"systemUnknown", "1.0", "", "", "2.0"},
                                           BestCase{"skipped", "1.0", "12", "1.10.0", "1.9"},
                                           BestCase{"same", "1.10", "12", "", ""},
                                           BestCase{"newerAlready", "3", "13", "", ""}),
                         [](const auto& entry) { return std::string(entry.param.name); });

} // namespace
