#pragma once

#include <QString>
#include <QWidget>

class QHBoxLayout;
class QVBoxLayout;
class TextLabel;

/// The frame that settings and setup share: the program's glyph and a title above, the content, the
/// version below. The content gives way where the height is not enough for all.
class AppPanel : public QWidget {
    Q_OBJECT
public:
    /// `version` is left out when empty.
    AppPanel(const QString& title, const QString& version, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    QString title() const;
    /// Stands beside the version; takes ownership.
    void addToFooter(QWidget* link);
    /// Takes ownership; what was there before is destroyed.
    void setContent(QWidget* content);
    QWidget* content() const { return shown; }

private:
    TextLabel* heading;
    QVBoxLayout* layout;
    QHBoxLayout* footer;
    QWidget* shown = nullptr;
};
