#include "VistrelPlatform/Update/AppcastReader.h"

#include "VistrelPlatform/Update/UpdateError.h"

namespace {

constexpr std::size_t maximumItems = 500;
constexpr qsizetype maximumText = 64 * 1024;
constexpr qint64 maximumArchive = 1024LL * 1024 * 1024;

QString fullName(const char* name) {
    return QStringLiteral("sparkle:") + QLatin1String(name);
}

QUrl secureAddress(const QString& text) {
    const QUrl address(text, QUrl::StrictMode);
    const bool usable = address.isValid() && address.scheme() == QLatin1String("https") &&
                        !address.host().isEmpty() && address.userInfo().isEmpty();
    return usable ? address : QUrl();
}

} // namespace

Result<std::vector<AppcastItem>> AppcastReader::read() {
    if (enterRoot()) {
        while (xml.readNextStartElement()) {
            if (xml.name() == QLatin1String("channel"))
                readChannel();
            else
                xml.skipCurrentElement();
        }
    }
    // The rest of the document has to be well-formed as well.
    while (!xml.atEnd())
        xml.readNext();
    if (xml.hasError())
        return tl::unexpected(UpdateError::make(
            UpdateError::invalidFeed, QStringLiteral("The update feed cannot be read (line %1: %2).")
                                          .arg(xml.lineNumber())
                                          .arg(xml.errorString())));
    return std::move(items);
}

bool AppcastReader::enterRoot() {
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::DTD) {
            xml.raiseError(QStringLiteral("document types are not accepted"));
            return false;
        }
        if (token == QXmlStreamReader::StartElement) {
            if (xml.name() == QLatin1String("rss"))
                return true;
            xml.raiseError(QStringLiteral("not an RSS document"));
            return false;
        }
    }
    return false;
}

void AppcastReader::readChannel() {
    std::size_t count = 0;
    while (xml.readNextStartElement()) {
        if (xml.qualifiedName() != QLatin1String("item")) {
            xml.skipCurrentElement();
            continue;
        }
        if (++count > maximumItems) {
            xml.raiseError(QStringLiteral("too many items"));
            return;
        }
        if (auto item = complete(readItem()))
            items.push_back(std::move(*item));
    }
}

AppcastReader::Draft AppcastReader::readItem() {
    Draft draft;
    while (xml.readNextStartElement()) {
        const auto name = xml.qualifiedName();
        const auto take = [&](const char* element, QString& value) {
            if (name != fullName(element))
                return false;
            value = text().trimmed();
            return true;
        };
        if (take("version", draft.version) || take("shortVersionString", draft.displayVersion) ||
            take("minimumSystemVersion", draft.minimumSystemVersion) || take("channel", draft.channel))
            continue;
        if (name == QLatin1String("enclosure")) {
            readEnclosure(draft);
        } else if (name == QLatin1String("link")) {
            draft.link = text().trimmed();
        } else if (name == QLatin1String("description")) {
            const auto format = xml.attributes().value(fullName("format"));
            draft.notesAreHtml = format.isEmpty() || format == QLatin1String("html");
            draft.notes = text();
        } else {
            xml.skipCurrentElement();
        }
    }
    return draft;
}

void AppcastReader::readEnclosure(Draft& draft) {
    const QXmlStreamAttributes attributes = xml.attributes();
    const auto take = [&](const QString& name, QString& value) {
        if (attributes.hasAttribute(name))
            value = attributes.value(name).toString().trimmed();
    };
    take(QStringLiteral("url"), draft.archive);
    take(QStringLiteral("length"), draft.length);
    take(fullName("version"), draft.version);
    take(fullName("shortVersionString"), draft.displayVersion);
    take(fullName("edSignature"), draft.signature);
    take(fullName("minimumSystemVersion"), draft.minimumSystemVersion);
    take(fullName("channel"), draft.channel);
    take(fullName("os"), draft.operatingSystem);
    xml.skipCurrentElement();
}

QString AppcastReader::text() {
    QString collected;
    // Counted instead of recursing: a feed decides how deep its elements go.
    for (int depth = 1; depth > 0 && !xml.atEnd();) {
        switch (xml.readNext()) {
        case QXmlStreamReader::StartElement:
            ++depth;
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        case QXmlStreamReader::Characters:
            collected += xml.text();
            break;
        default:
            break;
        }
        if (collected.size() > maximumText)
            xml.raiseError(QStringLiteral("a text is too long"));
    }
    return collected;
}

std::optional<AppcastItem> AppcastReader::complete(const Draft& draft) {
    const bool forUs = draft.channel.isEmpty() &&
                       (draft.operatingSystem.isEmpty() || draft.operatingSystem == QLatin1String("linux"));
    auto version = UpdateVersion::parse(draft.version);
    const auto minimum = UpdateVersion::parse(draft.minimumSystemVersion);
    const auto signature =
        QByteArray::fromBase64Encoding(draft.signature.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    bool isNumber = false;
    const qint64 length = draft.length.toLongLong(&isNumber);
    const bool lengthUsable = isNumber && length > 0 && length <= maximumArchive;
    const bool minimumUsable = draft.minimumSystemVersion.isEmpty() || minimum.has_value();
    const QUrl archive = secureAddress(draft.archive);
    if (!forUs || !version || !minimumUsable || !lengthUsable || archive.isEmpty() || !signature ||
        signature.decoded.size() != 64)
        return std::nullopt;

    AppcastItem item;
    item.displayVersion = draft.displayVersion.isEmpty() ? version->text() : draft.displayVersion.left(40);
    item.version = std::move(*version);
    item.minimumSystemVersion = minimum;
    item.archive = archive;
    item.length = length;
    item.signature = signature.decoded;
    item.link = secureAddress(draft.link);
    item.notes = draft.notes;
    item.notesAreHtml = draft.notesAreHtml;
    return item;
}
