#pragma once

#include "Settings/Windows/PageView.h"
#include "Settings/Windows/PanelSources.h"

#include <QUuid>

class AppController;
class QRadioButton;

/// The capture-shortcut chooser that ends the setup: the default, or one that is recorded here.
class ScreenshotShortcutSettings : public PageView {
    Q_OBJECT
public:
    enum class Choice { keepDefault, custom };

    explicit ScreenshotShortcutSettings(const PanelSources& given, QWidget* parent = nullptr);

    Choice choice() const { return chosen; }
    bool customChosen() const { return customAccepted; }

private:
    void addChoices();
    void addRecorder();
    void addWarning();
    void restoreChoice();
    void setChoice(Choice choice);
    void apply();
    void refresh();
    void presentAlert();

    const PanelSources& sources;
    AppController& controller;
    Choice chosen = Choice::keepDefault;
    bool customAccepted = false;
    QUuid presented;
    QRadioButton* keepDefault = nullptr;
    QRadioButton* custom = nullptr;
    TextLabel* current = nullptr;
    QWidget* recorderRows = nullptr;
    TextLabel* recorderHint = nullptr;
    QWidget* warningRows = nullptr;
    TextLabel* warningText = nullptr;
    QPushButton* applyButton = nullptr;
};
