#pragma once

#include <QLineEdit>

#include <functional>

/// The number between the step buttons. Reports what was typed when Return is pressed or editing ends.
class EditorSizeField : public QLineEdit {
    Q_OBJECT
public:
    explicit EditorSizeField(QWidget* parent = nullptr);

    /// The user has finished a change; whoever listens reads `text()` and puts a valid number back.
    std::function<void()> onCommit;

    /// Shows a size unless the user is typing one.
    void showSize(int size);
    bool isEditing() const { return hasFocus(); }
    /// Shows the size again instead of what is being typed; false when nothing is.
    bool revert();
    /// Size of the digits in points, and the width at both ends that the step buttons cover.
    void setDigits(double points, double covered);
    double digitSize() const { return digits; }
    void setCornerRadius(double points);

    /// A decimal whole number with an optional sign; anything else is nothing. Out of range saturates.
    static std::optional<int> number(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    bool event(QEvent* event) override;

private:
    void commit();
    /// What it shows is not the size it was told.
    bool isPending() const;

    QString shownText;
    double digits = 0;
    double radius = 6;
    bool selectOnRelease = false;
};
