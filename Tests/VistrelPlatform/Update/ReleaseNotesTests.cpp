#include "VistrelPlatform/Update/ReleaseNotes.h"

#include <gtest/gtest.h>

TEST(ReleaseNotes, keepTextAndDropWhatLoadsOrRuns) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"ordinary", "<h2>New</h2><ul><li>One &amp; <b>two</b></li></ul>",
         "<h2>New</h2><ul><li>One &amp; <b>two</b></li></ul>"},
        {"attributesGo", "<p style=\"x\" onclick='y'>a</p>", "<p>a</p>"},
        {"unknownTagsGo", "<div><img src=\"https://x/y.png\"/>a<iframe>b</iframe></div>", "ab"},
        {"scriptsGo", "a<script>if (1 < 2) alert()</script>b<style>p{}</style>c", "abc"},
        {"openScript", "a<script>b", "a"},
        {"comments", "a<!-- <b> -->b<!-- c", "ab"},
        {"secureLink", "<a href=\"https://x/?a=1&amp;b=2\">x</a>",
         "<a href=\"https://x/?a=1&amp;b=2\">x</a>"},
        {"otherLinks",
         "<a href=\"javascript:x()\">x</a><a href='file:///etc/passwd'>y</a><a href=http://z>z</a>",
         "<a>x</a><a>y</a><a>z</a>"},
        {"linkThatBreaksOut", "<a href='https://x/\"><img src=y>'>x</a>", "<a>x</a>"},
        {"unclosed", "<ul><li>a<li>b", "<ul><li>a<li>b</li></li></ul>"},
        {"crossed", "<b><i>a</b></i>c", "<b><i>a</i></b>c"},
        {"upperCase", "<B>a</b><BR>", "<b>a</b><br/>"},
        {"bareSigns", "1 < 2 & 3 > 2 &nonsense &lt;b&gt;", "1 &lt; 2 &amp; 3 &gt; 2 &amp;nonsense &lt;b&gt;"},
        {"unfinishedTag", "a<img src=\"x", "a&lt;img src=\"x"},
        {"nestedTag", "<<b>script>alert()<</b>/script>", "&lt;<b>script&gt;alert()&lt;</b>/script&gt;"},
    };
    for (const auto& [name, notes, html] : rows)
        EXPECT_EQ(ReleaseNotes::html(QString::fromUtf8(notes), true).toStdString(), html) << name;
    const QString deep = QStringLiteral("<ul>").repeated(5000);
    EXPECT_EQ(ReleaseNotes::html(deep, true).count(QStringLiteral("<ul>")), 16);
    EXPECT_EQ(ReleaseNotes::html(QStringLiteral("\n- a <b>\n- c\n"), false),
              QStringLiteral("<p>- a &lt;b&gt;<br/>- c</p>"));
}
