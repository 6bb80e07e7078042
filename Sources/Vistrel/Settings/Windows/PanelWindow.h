#pragma once

#include <QDialog>

class AppController;
class AppPanel;

/// A titled window that always fits its panel and is kept when it is closed. The program's own commands
/// work in it with Control or Super. Main thread.
class PanelWindow : public QDialog {
    Q_OBJECT
public:
    PanelWindow(const QString& title, AppController& owner);

    /// Takes ownership; the panel before is destroyed.
    void setPanel(AppPanel* panel);
    AppPanel* panel() const { return shown; }
    /// Centred the first time, in front and with the keyboard.
    void bringToFront();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

    AppController& controller;

private:
    void addCommand(const QString& text, const QString& key, void (AppController::*command)());

    AppPanel* shown = nullptr;
    bool placed = false;
};
