#pragma once

#include <QPushButton>

/// A button that looks like a link.
class LinkButton : public QPushButton {
    Q_OBJECT
public:
    LinkButton(const QString& text, const QString& objectName, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};
