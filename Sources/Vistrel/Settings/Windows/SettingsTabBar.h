#pragma once

#include "Settings/Windows/SettingsSymbols.h"

#include <QTabBar>

#include <vector>

/// Tabs with a symbol above their label, centred. Arrow keys and screen readers find ordinary tabs.
class SettingsTabBar : public QTabBar {
    Q_OBJECT
public:
    explicit SettingsTabBar(QWidget* parent = nullptr);

    void addSymbolTab(SettingsSymbols::Symbol symbol, const QString& label);

protected:
    QSize tabSizeHint(int index) const override;
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    std::vector<SettingsSymbols::Symbol> symbols;
    int hovered = -1;
    /// The focus came by the keyboard, so the user looks for where it is.
    bool showsFocus = false;
};
