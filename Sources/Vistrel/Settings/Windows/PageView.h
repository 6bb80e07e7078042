#pragma once

#include "Settings/Windows/PageButton.h"
#include "Settings/Windows/PageStyle.h"

#include <QVBoxLayout>

/// What every page is made of: a column on the grid, and the button that Return presses.
class PageView : public QWidget {
    Q_OBJECT
public:
    explicit PageView(QWidget* parent = nullptr);

    /// Absent where no button is meant.
    QPushButton* defaultButton() const { return preferred; }

protected:
    TextLabel* addText(const QString& text, PageStyle::TextRole role);
    void add(QWidget* widget, Qt::Alignment alignment = {});
    void add(QLayout* row);
    void addSpace(int points);
    void addDivider();
    /// A row with the buttons at its trailing end.
    void addButtons(const QList<QPushButton*>& buttons);
    void setDefaultButton(QPushButton* button);
    QVBoxLayout* column() { return pageRows; }

private:
    QVBoxLayout* pageRows;
    QPushButton* preferred = nullptr;
};

/// A row with a note that begins where the text of the box above it begins.
QLayout* noteUnder(const QAbstractButton& box, const QString& text, QWidget* parent);
