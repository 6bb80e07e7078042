#pragma once

#include <QScrollArea>

/// Shows a page whole where there is room, and scrolls it where there is not. What gets the keyboard is
/// brought into view; the wheel only ever scrolls, it changes no value that happens to lie under it.
class PageScroller : public QScrollArea {
    Q_OBJECT
public:
    explicit PageScroller(QWidget* parent = nullptr);
    ~PageScroller() override;

    /// Takes ownership; the page before is destroyed.
    void setPage(QWidget* page);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void decideOnBar();
    void reveal(QWidget* focused);

    QMetaObject::Connection focusWatch;
};
