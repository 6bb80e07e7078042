#pragma once

#include <QDialog>
#include <QKeySequence>

class AppController;
class AppPanel;

/// A titled window that fits its panel as far as the screen allows and is kept when it is closed. The
/// program's own commands work in it with Control or Super. Main thread.
class PanelWindow : public QDialog {
    Q_OBJECT
public:
    PanelWindow(const QString& title, AppController& owner);

    /// Takes ownership; the panel before is destroyed.
    void setPanel(AppPanel* panel);
    AppPanel* panel() const { return shown; }
    /// Centred the first time, in front and with the keyboard.
    void bringToFront();

    /// What a window's content may be high on the screen, with room for what surrounds it. Points.
    static int roomOn(const QScreen& screen, const QMargins& frame = {});
    /// Control is the desktop's habit, Super the key that the shortcuts are named after.
    static QList<QKeySequence> withCommandKey(const QString& key);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

    AppController& controller;

private:
    /// Takes the panel's size, or what the screen has of it.
    void fit();
    void addCommand(const QString& text, const QString& key, void (AppController::*command)());

    AppPanel* shown = nullptr;
    bool placed = false;
};
