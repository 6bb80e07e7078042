#pragma once

#include <QPushButton>

/// A button of the settings and setup windows: the same room around every text, and Return presses it
/// while it has the keyboard. It becomes no default by that.
class PageButton : public QPushButton {
    Q_OBJECT
public:
    PageButton(const QString& text, const QString& objectName, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

/// The text as it is read: without the sign before the letter that Alt presses.
QString withoutMnemonic(QString text);
/// The size that a button needs for a text, with room around it.
QSize makeRoom(const QPushButton& button, const QString& text);
