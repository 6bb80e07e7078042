#include "Settings/Windows/SettingsTabsView.h"

#include "App/AppController.h"
#include "Reports/ProblemReportModel.h"
#include "Settings/Windows/AppearanceSettingsView.h"
#include "Settings/Windows/EditorShortcutsView.h"
#include "Settings/Windows/PageScroller.h"
#include "Settings/Windows/ProblemReportSettingsView.h"
#include "Settings/Windows/SettingsTabBar.h"
#include "Settings/Windows/UpdateSettingsView.h"

#include <QShortcut>

SettingsTabsView::SettingsTabsView(const PanelSources& given, SettingsTab initial, std::function<void()> done,
                                   QWidget* parent)
    : QWidget(parent),
      sources(given),
      onDone(std::move(done)),
      selected(initial),
      bar(new SettingsTabBar(this)),
      scroller(new PageScroller(this)) {
    using SettingsSymbols::Symbol;
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    bar->setObjectName(QStringLiteral("settingsTabs"));
    bar->setAccessibleName(QStringLiteral("Vistrel Settings"));
    bar->addSymbolTab(Symbol::keyboard, QStringLiteral("&Shortcuts"));
    bar->addSymbolTab(Symbol::palette, QStringLiteral("&Appearance"));
    bar->addSymbolTab(Symbol::cycle, QStringLiteral("&Updates"));
    bar->addSymbolTab(Symbol::ladybug, QStringLiteral("Su&pport"));
    rows->addSpacing(PageStyle::itemSpacing);
    rows->addWidget(bar, 0, Qt::AlignHCenter);
    rows->addSpacing(PageStyle::itemSpacing);
    rows->addWidget(PageStyle::divider(this));
    rows->addWidget(scroller, 1);
    setFocusProxy(bar);
    bar->setCurrentIndex(static_cast<int>(initial));
    connect(bar, &QTabBar::currentChanged, this,
            [this](int index) { show(static_cast<SettingsTab>(index)); });
    turnWith({QKeySequence::NextChild, QKeySequence(Qt::CTRL | Qt::Key_PageDown)}, 1);
    turnWith({QKeySequence::PreviousChild, QKeySequence(Qt::CTRL | Qt::Key_PageUp)}, -1);
    show(initial);
}

void SettingsTabsView::turnWith(const QList<QKeySequence>& keys, int step) {
    for (const QKeySequence& key : keys) {
        connect(new QShortcut(key, this), &QShortcut::activated, this, [this, step] {
            bar->setCurrentIndex((bar->currentIndex() + step + bar->count()) % bar->count());
        });
    }
}

void SettingsTabsView::select(SettingsTab tab) {
    bar->setCurrentIndex(static_cast<int>(tab));
}

void SettingsTabsView::show(SettingsTab tab) {
    selected = tab;
    shown = makePage(tab);
    scroller->setPage(shown);
    if (shown->defaultButton())
        shown->defaultButton()->setDefault(true);
}

PageView* SettingsTabsView::makePage(SettingsTab tab) {
    AppController& controller = sources.controller;
    switch (tab) {
    case SettingsTab::shortcuts:
        break;
    case SettingsTab::appearance:
        return new AppearanceSettingsView(
            {controller.editorPreferences(), controller.diagnostics(), controller.userDefaults()}, onDone,
            this);
    case SettingsTab::updates:
        return new UpdateSettingsView(controller.updates(), this);
    case SettingsTab::support:
        return new ProblemReportSettingsView(sources.makeReportModel(), onDone, this);
    }
    return new EditorShortcutsView(controller, onDone, this);
}
