#include "Settings/Windows/PageScroller.h"

#include "Settings/Windows/PageStyle.h"

#include <QApplication>
#include <QComboBox>
#include <QScrollBar>
#include <QSlider>

namespace {

constexpr int leastHeight = 8 * PageStyle::grid;

} // namespace

PageScroller::PageScroller(QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    verticalScrollBar()->setSingleStep(2 * PageStyle::grid);
    focusWatch =
        connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { reveal(now); });
}

PageScroller::~PageScroller() {
    // What goes away with the page may have the keyboard.
    disconnect(focusWatch);
}

void PageScroller::setPage(QWidget* page) {
    setWidget(page);
    for (QWidget* control : page->findChildren<QWidget*>()) {
        if (qobject_cast<QSlider*>(control) || qobject_cast<QComboBox*>(control))
            control->installEventFilter(this);
    }
    page->show();
    updateGeometry();
}

int PageScroller::heightForWidth(int width) const {
    const QWidget* page = widget();
    if (!page)
        return 0;
    return page->hasHeightForWidth() ? page->heightForWidth(width) : page->sizeHint().height();
}

QSize PageScroller::sizeHint() const {
    return widget() ? widget()->sizeHint() : QSize();
}

QSize PageScroller::minimumSizeHint() const {
    return {0, leastHeight};
}

void PageScroller::decideOnBar() {
    // Once shown, the bar makes the page narrower and by that taller, and would stay for its own sake.
    setVerticalScrollBarPolicy(heightForWidth(width()) > height() ? Qt::ScrollBarAsNeeded
                                                                  : Qt::ScrollBarAlwaysOff);
    // The range of the bar does not follow by itself.
    QEvent request(QEvent::LayoutRequest);
    QScrollArea::event(&request);
}

void PageScroller::resizeEvent(QResizeEvent* event) {
    decideOnBar();
    QScrollArea::resizeEvent(event);
}

bool PageScroller::eventFilter(QObject* watched, QEvent* event) {
    if (watched == widget()) {
        // The page asks for another height.
        if (event->type() == QEvent::LayoutRequest) {
            updateGeometry();
            decideOnBar();
        }
    } else if (event->type() == QEvent::Wheel && widget() &&
               widget()->isAncestorOf(qobject_cast<QWidget*>(watched))) {
        event->ignore();
        return true;
    }
    return QScrollArea::eventFilter(watched, event);
}

void PageScroller::reveal(QWidget* focused) {
    if (focused && widget() && widget()->isAncestorOf(focused))
        ensureWidgetVisible(focused, 0, PageStyle::groupSpacing);
}
