#include "VistrelPlatform/Update/Appcast.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray item(const QByteArray& enclosure, const QByteArray& children = {}) {
    return "<item>" + children + "<enclosure " + enclosure + "/></item>";
}

QByteArray enclosure(const QByteArray& version, const QByteArray& more = {}) {
    return "url=\"https://example.org/a\" length=\"10\" sparkle:version=\"" + version +
           "\" sparkle:edSignature=\"" + QByteArray(64, 's').toBase64() + "\" " + more;
}

/// An item of version 1.0 with one thing changed.
QByteArray changed(const char* what, const char* with) {
    return item(enclosure("1.0").replace(what, with));
}

QByteArray feed(const QByteArray& items) {
    return "<rss xmlns:sparkle=\"urn:vistrel:appcast\"><channel><title>T</title>" + items +
           "</channel></rss>";
}

std::optional<UpdateVersion> version(const char* text) {
    return UpdateVersion::parse(QString::fromUtf8(text));
}

QByteArray entityBomb() {
    QByteArray text = "<!DOCTYPE rss [<!ENTITY a \"aaaaaaaaaa\">";
    for (char name = 'b'; name < 'k'; ++name)
        text += QByteArray("<!ENTITY ") + name + " \"" +
                QByteArray(10, '?').replace("?", QByteArray("&") + char(name - 1) + ";") + "\">";
    return text + "]>" + feed("<item><description>&j;</description></item>");
}

} // namespace

TEST(UpdateVersion, comparesNumberByNumber) {
    // In rising order; what stands together is equal.
    const std::vector<std::vector<const char*>> ranks = {
        {"1", "1.0.0", "01"}, {"1.02", "1.2"}, {"1.2.0.1"}, {"1.9"}, {"1.10"}, {"1.999999999"}, {"2.0"}};
    for (std::size_t lower = 0; lower < ranks.size(); ++lower)
        for (std::size_t upper = lower; upper < ranks.size(); ++upper)
            for (const char* a : ranks[lower])
                for (const char* b : ranks[upper]) {
                    EXPECT_EQ(*version(a) < *version(b), lower < upper) << a << ' ' << b;
                    EXPECT_EQ(*version(a) == *version(b), lower == upper) << a << ' ' << b;
                }
    for (const char* text : {"", "1.", ".1", "1..2", "1.0b", "v1", " 1", "1 ", "1\n", "-1", "1.1234567890",
                             "1.2.3.4.5.6.7.8.9", "١"})
        EXPECT_FALSE(version(text)) << text;
}

TEST(Appcast, keepsWhatCouldBeInstalledHere) {
    const std::tuple<const char*, QByteArray, const char*> rows[] = {
        {"several", item(enclosure("1.0")) + item(enclosure("1.1")), "1.0 1.1"},
        {"versionAsElement",
         item(enclosure("9").replace("sparkle:version=\"9\"", ""),
              "<sparkle:version> 1.2 </sparkle:version>"),
         "1.2"},
        {"linux", item(enclosure("1.0", "sparkle:os=\"linux\"")), "1.0"},
        {"anotherSystem", item(enclosure("1.0", "sparkle:os=\"windows\"")), ""},
        {"channelAsElement", item(enclosure("1.0"), "<sparkle:channel>beta</sparkle:channel>"), ""},
        {"channelAsAttribute", item(enclosure("1.0", "sparkle:channel=\"beta\"")), ""},
        {"noEnclosure", "<item><sparkle:version>3</sparkle:version></item>", ""},
        {"plainAddress", changed("https:", "http:"), ""},
        {"addressWithPassword", changed("https://", "https://a:b@"), ""},
        {"noSignature", changed("sparkle:edSignature", "sparkle:other"), ""},
        {"shortSignature", changed("sparkle:edSignature=\"c3N", "sparkle:edSignature=\""), ""},
        {"noLength", changed("length=\"10\"", ""), ""},
        {"zeroLength", changed("\"10\"", "\"0\""), ""},
        {"hugeLength", changed("\"10\"", "\"99999999999\""), ""},
        {"strangeVersion", item(enclosure("1.0-beta")), ""},
        {"strangeMinimum", item(enclosure("1.0", "sparkle:minimumSystemVersion=\"new\"")), ""},
        {"attributeOfNoPrefix", changed("sparkle:version", "version"), ""},
    };
    for (const auto& [name, text, expected] : rows) {
        const auto items = Appcast::parse(feed(text));
        ASSERT_TRUE(items) << name << items.error().description.toStdString();
        QStringList versions;
        for (const AppcastItem& each : *items)
            versions << each.version.text();
        EXPECT_EQ(versions.join(u' ').toStdString(), expected) << name;
    }
}

TEST(Appcast, readsEverythingThatIsShown) {
    const QByteArray children =
        "<title>x</title><sparkle:shortVersionString>Two &amp; a half</sparkle:shortVersionString>"
        "<link>https://example.org/notes</link>"
        "<description sparkle:format=\"plain-text\"><![CDATA[a <b> c]]></description>";
    const auto items =
        Appcast::parse(feed(item(enclosure("2.5", "sparkle:minimumSystemVersion=\"12.1\""), children)));
    ASSERT_TRUE(items && items->size() == 1);
    const AppcastItem& read = items->front();
    EXPECT_EQ(read.displayVersion, u"Two & a half"_s);
    EXPECT_EQ(read.minimumSystemVersion, version("12.1"));
    EXPECT_EQ(read.archive, QUrl(u"https://example.org/a"_s));
    EXPECT_EQ(read.length, 10);
    EXPECT_EQ(read.signature, QByteArray(64, 's'));
    EXPECT_EQ(read.link, QUrl(u"https://example.org/notes"_s));
    EXPECT_EQ(read.notes, u"a <b> c"_s);
    EXPECT_FALSE(read.notesAreHtml);
}

TEST(Appcast, aBadFeedIsRefusedWhole) {
    const QByteArray good = feed(item(enclosure("1.0")));
    const std::pair<const char*, QByteArray> rows[] = {
        {"empty", ""},
        {"noXml", "hello"},
        {"otherDocument", "<html><body/></html>"},
        {"truncated", good.chopped(30)},
        {"truncatedAtTheEnd", good.chopped(3)},
        {"twoDocuments", good + good},
        {"entityBomb", entityBomb()},
        {"documentType", "<!DOCTYPE rss SYSTEM \"file:///etc/passwd\">" + good},
        {"unknownEntity", feed("<item><link>&passwd;</link></item>")},
        {"unknownPrefix", "<rss><channel><item><enclosure sparkle:version=\"1\"/></item></channel></rss>"},
        {"wrongEncoding", feed("<title>\xff\xfe</title>")},
        {"longText", feed("<item><description>" + QByteArray(70000, 'x') + "</description></item>")},
        {"manyItems", feed(QByteArray("<item/>").repeated(501))},
        {"tooLarge", feed(QByteArray(1100000, ' '))},
        {"deepAndOpen", feed("<item><description>" + QByteArray("<a>").repeated(100000))},
    };
    for (const auto& [name, text] : rows) {
        const auto items = Appcast::parse(text);
        EXPECT_TRUE(!items && items.error().code == 1000) << name;
    }
    // Deep elements are read without deep calls.
    const QByteArray deep = QByteArray("<a>").repeated(50000) + "x" + QByteArray("</a>").repeated(50000);
    EXPECT_TRUE(Appcast::parse(feed("<item><description>" + deep + "</description></item>")));
}

TEST(Appcast, theBestIsTheHighestThatFits) {
    const auto items = Appcast::parse(feed(item(enclosure("1.9")) + item(enclosure("1.10")) +
                                           item(enclosure("2.0", "sparkle:minimumSystemVersion=\"13\"")) +
                                           item(enclosure("1.2"))));
    ASSERT_TRUE(items);
    const std::tuple<const char*, const char*, const char*, const char*, const char*> rows[] = {
        {"highest", "1.0", "13.0", "", "2.0"},   {"systemTooOld", "1.0", "12.9", "", "1.10"},
        {"systemUnknown", "1.0", "", "", "2.0"}, {"skipped", "1.0", "12", "1.10.0", "1.9"},
        {"same", "1.10", "12", "", ""},          {"newerAlready", "3", "13", "", ""},
    };
    for (const auto& [name, current, system, skipped, expected] : rows) {
        const auto best = Appcast::best(*items, {*version(current), version(system), version(skipped)});
        EXPECT_EQ(best ? best->version.text().toStdString() : "", expected) << name;
    }
}
