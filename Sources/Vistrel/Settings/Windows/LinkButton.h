#pragma once

#include "Settings/Windows/PageButton.h"

/// A button that looks like a link.
class LinkButton : public PageButton {
    Q_OBJECT
public:
    LinkButton(const QString& text, const QString& objectName, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};
