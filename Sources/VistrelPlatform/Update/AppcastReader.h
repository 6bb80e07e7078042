#pragma once

#include "VistrelPlatform/Result.h"
#include "VistrelPlatform/Update/AppcastItem.h"

#include <QXmlStreamReader>

#include <vector>

/// Reads one feed. Work per byte and memory are bounded whatever the feed holds.
class AppcastReader {
public:
    explicit AppcastReader(const QByteArray& feed) : xml(feed) {}

    Result<std::vector<AppcastItem>> read();

private:
    /// What an item says, before it is known to be complete.
    struct Draft {
        QString version;
        QString displayVersion;
        QString minimumSystemVersion;
        QString channel;
        QString operatingSystem;
        QString archive;
        QString length;
        QString signature;
        QString link;
        QString notes;
        bool notesAreHtml = true;
    };

    bool enterRoot();
    void readChannel();
    Draft readItem();
    void readEnclosure(Draft& draft);
    QString text();
    static std::optional<AppcastItem> complete(const Draft& draft);

    QXmlStreamReader xml;
    std::vector<AppcastItem> items;
};
