#include "VistrelPlatform/Update/ReleaseNotes.h"

#include <QRegularExpression>
#include <QStringList>

namespace {

constexpr qsizetype maximumDepth = 16;

bool isAllowed(const QString& tag) {
    static const QStringList allowed{QStringLiteral("p"),      QStringLiteral("ul"),   QStringLiteral("ol"),
                                     QStringLiteral("li"),     QStringLiteral("b"),    QStringLiteral("i"),
                                     QStringLiteral("strong"), QStringLiteral("em"),   QStringLiteral("h1"),
                                     QStringLiteral("h2"),     QStringLiteral("h3"),   QStringLiteral("h4"),
                                     QStringLiteral("a"),      QStringLiteral("code"), QStringLiteral("pre")};
    return allowed.contains(tag);
}

/// Elements whose text is no text.
bool isHidden(const QString& tag) {
    static const QStringList hidden{QStringLiteral("script"), QStringLiteral("style"), QStringLiteral("head"),
                                    QStringLiteral("title"), QStringLiteral("template")};
    return hidden.contains(tag);
}

/// Text as it stands, with its entities, and without anything that could begin a tag.
QString safeText(QString text) {
    static const QRegularExpression loneAmpersand(
        QStringLiteral("&(?!(#[0-9]{1,7}|#x[0-9A-Fa-f]{1,6}|[A-Za-z]{2,10});)"));
    return text.replace(loneAmpersand, QStringLiteral("&amp;"))
        .replace(QLatin1Char('<'), QStringLiteral("&lt;"))
        .replace(QLatin1Char('>'), QStringLiteral("&gt;"));
}

QString linkAddress(const QString& attributes) {
    static const QRegularExpression reference(
        QStringLiteral("(?:^|\\s)href\\s*=\\s*(?:\"([^\"]*)\"|'([^']*)')"),
        QRegularExpression::CaseInsensitiveOption);
    const auto match = reference.match(attributes);
    const QString written = match.captured(1) + match.captured(2);
    const QUrl address(QString(written).replace(QStringLiteral("&amp;"), QStringLiteral("&")),
                       QUrl::StrictMode);
    const bool usable = address.isValid() && address.scheme() == QLatin1String("https") &&
                        !address.host().isEmpty() && address.userInfo().isEmpty();
    return usable ? QString::fromLatin1(address.toEncoded()) : QString();
}

/// Walks over the tags and writes the allowed ones, each opened one closed in its turn.
class Sanitiser {
public:
    QString sanitise(const QString& source) {
        static const QRegularExpression markup(
            QStringLiteral(
                "<!--.*?(?:-->|\\z)|<(/?)([A-Za-z][A-Za-z0-9]*)((?:\"[^\"]*\"|'[^']*'|[^'\"<>])*+)>"),
            QRegularExpression::DotMatchesEverythingOption);
        qsizetype position = 0;
        auto matches = markup.globalMatch(source);
        while (matches.hasNext()) {
            const auto match = matches.next();
            text(source.mid(position, match.capturedStart() - position));
            position = match.capturedEnd();
            const QString tag = match.captured(2).toLower();
            if (tag.isEmpty())
                continue;
            if (match.captured(1).isEmpty())
                open(tag, match.captured(3));
            else
                close(tag);
        }
        text(source.mid(position));
        while (!opened.isEmpty())
            closeLast();
        return output;
    }

private:
    void text(const QString& piece) {
        if (hidden.isEmpty())
            output += safeText(piece);
    }
    void open(const QString& tag, const QString& attributes) {
        if (!hidden.isEmpty())
            return;
        if (isHidden(tag)) {
            hidden = tag;
        } else if (tag == QLatin1String("br")) {
            output += QStringLiteral("<br/>");
        } else if (isAllowed(tag) && opened.size() < maximumDepth) {
            const QString address = tag == QLatin1String("a") ? linkAddress(attributes) : QString();
            output += address.isEmpty() ? QStringLiteral("<%1>").arg(tag)
                                        : QStringLiteral("<a href=\"%1\">").arg(address.toHtmlEscaped());
            opened << tag;
        }
    }
    void close(const QString& tag) {
        if (tag == hidden)
            hidden.clear();
        else if (hidden.isEmpty() && opened.contains(tag))
            while (closeLast() != tag) {
            }
    }
    QString closeLast() {
        QString tag = opened.takeLast();
        output += QStringLiteral("</%1>").arg(tag);
        return tag;
    }

    QString output;
    QStringList opened;
    QString hidden;
};

} // namespace

QString ReleaseNotes::html(const QString& notes, bool notesAreHtml) {
    if (notesAreHtml)
        return Sanitiser().sanitise(notes);
    return QStringLiteral("<p>%1</p>")
        .arg(notes.trimmed().toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br/>")));
}
