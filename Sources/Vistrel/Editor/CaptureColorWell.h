#pragma once

#include <QColor>
#include <QPushButton>

#include <functional>
#include <optional>

class EditorHint;
class QColorDialog;

/// The colour button of the tools panel. All wells share one colour dialog, which at most one of them
/// owns at a time. Opaque colours only. Main thread.
class CaptureColorWell : public QPushButton {
    Q_OBJECT
public:
    explicit CaptureColorWell(QWidget* parent = nullptr);
    ~CaptureColorWell() override;

    /// Makes the dialog stand above the overlay; called before every show. Set once by the application.
    static std::function<void(QWidget& dialog)> prepareDialog;
    /// Puts back what that changed; called after the dialog has been hidden.
    static std::function<void(QWidget& dialog)> restoreDialog;

    /// The user chose a colour. A drag in the dialog, or looking for a colour on the screen, is reported
    /// once, when it ends.
    std::function<void(const QColor&)> onColor;
    /// The picker of this well is about to open.
    std::function<void()> onPickerOpened;
    /// The picker of this well has been closed, by whomever.
    std::function<void()> onPickerClosed;

    /// Shows a colour, without a report.
    void setColor(const QColor& color);
    QColor color() const { return shown; }
    /// Opens the dialog for this well; another well's picker is closed first.
    void activate();
    /// Closes the dialog if this well opened it; nothing otherwise.
    void closePicker();
    bool isActive() const;
    bool isHovered() const;
    EditorHint& hint() { return *bubble; }

    /// The one dialog; made on first use.
    static QColorDialog& sharedDialog();
    /// Where the dialog goes: beside the well, inside the screen. All in y-down points of the desktop.
    static QPoint dialogPosition(const QRect& well, QSize dialog, const QRect& screen);

    QSize sizeHint() const override { return {32, 32}; }
    QSize minimumSizeHint() const override { return {}; }

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void openDialog();
    void dialogChanged(const QColor& color);
    static bool isStillChoosing();
    void reportChoice();

    EditorHint* bubble;
    QColor shown = Qt::red;
    /// What the rest of the program knows.
    QColor known = Qt::red;
    std::optional<QColor> unreported;
};
