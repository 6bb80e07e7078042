#pragma once

#include <QString>
#include <QWidget>

class QVBoxLayout;
class TextLabel;

/// The frame that settings and setup share: the program's glyph and a title above, the content, the
/// version below. Its width is fixed by the system's font, its height follows the content.
class AppPanel : public QWidget {
    Q_OBJECT
public:
    /// `version` is left out when empty.
    AppPanel(const QString& title, const QString& version, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    QString title() const;
    /// Takes ownership; what was there before is destroyed.
    void setContent(QWidget* content);
    QWidget* content() const { return shown; }

private:
    TextLabel* heading;
    QVBoxLayout* layout;
    QWidget* shown = nullptr;
};
