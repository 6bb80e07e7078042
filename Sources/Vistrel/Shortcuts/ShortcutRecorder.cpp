#include "Shortcuts/ShortcutRecorder.h"

#include "Shortcuts/RecorderButton.h"

RecorderButton* ShortcutRecorder::makeButton(QWidget* parent) const {
    return new RecorderButton(*this, parent);
}

void ShortcutRecorder::update(RecorderButton& button) const {
    button.setRecorder(*this);
}
