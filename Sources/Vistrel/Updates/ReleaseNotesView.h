#pragma once

#include <QTextBrowser>

/// Shows sanitised release notes. It loads nothing, whatever the text refers to.
class ReleaseNotesView : public QTextBrowser {
public:
    explicit ReleaseNotesView(QWidget* parent = nullptr);

protected:
    QVariant loadResource(int, const QUrl&) override { return {}; }
};
