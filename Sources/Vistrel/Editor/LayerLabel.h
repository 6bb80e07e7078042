#pragma once

#include <QWidget>

/// A row's text in one line, cut at its end when it does not fit. The press belongs to the row.
class LayerLabel : public QWidget {
    Q_OBJECT
public:
    static constexpr double fontSize = 12;

    explicit LayerLabel(QWidget* row);

    void setText(const QString& text);
    const QString& text() const { return content; }
    void setMagnification(double scale);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString content;
};
