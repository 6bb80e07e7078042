#include "VistrelPlatform/Update/ReleaseNotes.h"

#include <gtest/gtest.h>

namespace {

struct NotesCase {
    const char* name;
    const char* notes;
    const char* html;
};

class ReleaseNotesTests : public ::testing::TestWithParam<NotesCase> {};

TEST_P(ReleaseNotesTests, keepsTextAndDropsWhatLoadsOrRuns) {
    EXPECT_EQ(ReleaseNotes::html(QString::fromUtf8(GetParam().notes), true).toStdString(), GetParam().html);
}

INSTANTIATE_TEST_SUITE_P(
    Notes, ReleaseNotesTests,
    ::testing::Values(
        NotesCase{"ordinary", "<h2>New</h2><ul><li>One &amp; <b>two</b></li></ul>",
                  "<h2>New</h2><ul><li>One &amp; <b>two</b></li></ul>"},
        NotesCase{"attributesGo", "<p style=\"x\" onclick='y'>a</p>", "<p>a</p>"},
        NotesCase{"unknownTagsGo", "<div><img src=\"https://x/y.png\"/>a<iframe>b</iframe></div>", "ab"},
        NotesCase{"scriptsGo", "a<script>if (1 < 2) alert()</script>b<style>p{}</style>c", "abc"},
        NotesCase{"openScript", "a<script>b", "a"}, NotesCase{"comments", "a<!-- <b> -->b<!-- c", "ab"},
        NotesCase{"secureLink", "<a href=\"https://example.org/?a=1&amp;b=2\">x</a>",
                  "<a href=\"https://example.org/?a=1&amp;b=2\">x</a>"},
        NotesCase{"otherLinks",
                  "<a href=\"javascript:x()\">x</a><a href='file:///etc/passwd'>y</a><a href=http://z>z</a>",
                  "<a>x</a><a>y</a><a>z</a>"},
        NotesCase{"linkThatBreaksOut", "<a href='https://x/\"><img src=y>'>x</a>", "<a>x</a>"},
        NotesCase{"unclosed", "<ul><li>a<li>b", "<ul><li>a<li>b</li></li></ul>"},
        NotesCase{"crossed", "<b><i>a</b></i>c", "<b><i>a</i></b>c"},
        NotesCase{"upperCase", "<B>a</b><BR>", "<b>a</b><br/>"},
        NotesCase{"bareSigns", "1 < 2 & 3 > 2 &nonsense &lt;b&gt;",
                  "1 &lt; 2 &amp; 3 &gt; 2 &amp;nonsense &lt;b&gt;"},
        NotesCase{"unfinishedTag", "a<img src=\"x", "a&lt;img src=\"x"},
        NotesCase{"nestedTag", "<<b>script>alert()<</b>/script>",
                  "&lt;<b>script&gt;alert()&lt;</b>/script&gt;"}),
    [](const auto& entry) { return std::string(entry.param.name); });

TEST(ReleaseNotesTests, depthIsBounded) {
    const QString deep = QStringLiteral("<ul>").repeated(5000) + QStringLiteral("x");
    EXPECT_EQ(ReleaseNotes::html(deep, true).count(QStringLiteral("<ul>")), 16);
}

TEST(ReleaseNotesTests, plainNotesKeepTheirLines) {
    EXPECT_EQ(ReleaseNotes::html(QStringLiteral("\n- a <b>\n- c\n"), false),
              QStringLiteral("<p>- a &lt;b&gt;<br/>- c</p>"));
}

} // namespace
