#pragma once

#include <QObject>

class QWidget;

/// Keeps the repeats of a held key from answering a dialog: what one press opened, its repeats must not
/// dismiss unread. Belongs to the dialog.
class DialogKeys : public QObject {
public:
    /// Before the dialog is shown.
    static void ignoreHeld(QWidget& dialog);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    explicit DialogKeys(QWidget& dialog);
};
