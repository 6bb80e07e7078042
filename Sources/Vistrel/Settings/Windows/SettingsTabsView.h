#pragma once

#include "Settings/Windows/PanelSources.h"

#include <QKeySequence>
#include <QWidget>

#include <functional>

class PageScroller;
class PageView;
class SettingsTabBar;

enum class SettingsTab { shortcuts, appearance, updates, support };

/// The four pages of the settings window. Only the chosen page exists; choosing it again makes a new one.
class SettingsTabsView : public QWidget {
    Q_OBJECT
public:
    SettingsTabsView(const PanelSources& given, SettingsTab initial, std::function<void()> done,
                     QWidget* parent = nullptr);

    SettingsTab selection() const { return selected; }
    void select(SettingsTab tab);
    PageView* page() const { return shown; }

private:
    /// The keys go through the tabs, round the ends.
    void turnWith(const QList<QKeySequence>& keys, int step);
    void show(SettingsTab tab);
    PageView* makePage(SettingsTab tab);

    const PanelSources& sources;
    std::function<void()> onDone;
    SettingsTab selected;
    SettingsTabBar* bar;
    PageScroller* scroller;
    PageView* shown = nullptr;
};
