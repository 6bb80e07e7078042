#pragma once

#include "Shortcuts/ShortcutRecorder.h"

#include <QPushButton>

/// A push button that, once clicked, takes the next key press as a shortcut. Losing the focus does not
/// end the recording.
class RecorderButton : public QPushButton {
    Q_OBJECT
public:
    explicit RecorderButton(ShortcutRecorder owner, QWidget* parent = nullptr);
    ~RecorderButton() override;

    void setRecorder(ShortcutRecorder owner);
    bool recording() const { return isRecording; }
    void startRecording();

protected:
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void stopRecording();
    void take(const QKeyEvent& press);
    void show(const QString& title);
    void updateListening();

    ShortcutRecorder recorder;
    bool isRecording = false;
    bool isListening = false;
};
