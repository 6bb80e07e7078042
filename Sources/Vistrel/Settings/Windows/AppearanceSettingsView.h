#pragma once

#include "Settings/Windows/PageView.h"

#include <functional>

class EditorPreferences;
class LocalDiagnostics;
class QCheckBox;
class UserDefaults;

/// The Appearance page: panel size, what a double click does, reduction, save format, diagnostic history.
class AppearanceSettingsView : public PageView {
    Q_OBJECT
public:
    /// All borrowed for the life of the page.
    struct Sources {
        EditorPreferences& preferences;
        LocalDiagnostics& journal;
        UserDefaults& defaults;
    };
    AppearanceSettingsView(Sources sources, std::function<void()> onDone, QWidget* parent = nullptr);

private:
    void addPanelSize(EditorPreferences& preferences);
    QCheckBox* addCheckBox(const QString& text, const QString& objectName, const QString& note);
    void addSaveFormat(EditorPreferences& preferences);
};
