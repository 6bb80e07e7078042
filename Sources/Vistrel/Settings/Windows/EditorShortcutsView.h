#pragma once

#include "Settings/Windows/EditorShortcutEntry.h"
#include "Settings/Windows/PageView.h"

#include <functional>

class AppController;

/// The Shortcuts page: the capture shortcut, and what the keys do in the overlay.
class EditorShortcutsView : public PageView {
    Q_OBJECT
public:
    EditorShortcutsView(AppController& controller, std::function<void()> onDone, QWidget* parent = nullptr);

private:
    QLayout* captureRow(AppController& controller);
    QWidget* table(const QString& title, const std::vector<EditorShortcutEntry>& entries);
};
