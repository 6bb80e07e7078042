#include "Settings/Windows/PageStyle.h"

#include "Editor/DevicePixels.h"

#include <QApplication>
#include <QEvent>
#include <QFontMetrics>
#include <QVBoxLayout>

namespace PageStyle {
namespace {

constexpr double titleRatio = 1.4;
constexpr double noteRatio = 0.92;
constexpr double secondaryShare = 0.68;
constexpr int charactersPerLine = 72;

/// A line of whole pixels: a styled one lies between them at fractional scales, and may be left out.
class Divider : public QWidget {
public:
    explicit Divider(QWidget* parent) : QWidget(parent) {
        setFixedHeight(1);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const QPointF corner = DevicePixels::aligned(painter, QPointF(0, 0));
        const double pixels = std::max(1.0, std::floor(DevicePixels::ratio(painter)));
        painter.fillRect(QRectF(corner.x(), corner.y(), width(), pixels * DevicePixels::one(painter)),
                         palette().color(QPalette::Mid));
    }
};

} // namespace

QFont font(TextRole role, const QFont& base) {
    QFont font = base;
    const auto scale = [&font](double ratio) {
        if (font.pointSizeF() > 0)
            font.setPointSizeF(font.pointSizeF() * ratio);
        else
            font.setPixelSize(qRound(font.pixelSize() * ratio));
    };
    switch (role) {
    case TextRole::title:
        scale(titleRatio);
        font.setWeight(QFont::Bold);
        break;
    case TextRole::heading:
        font.setWeight(QFont::DemiBold);
        break;
    case TextRole::body:
        break;
    case TextRole::note:
        scale(noteRatio);
        break;
    }
    return font;
}

QColor secondaryColor(const QPalette& palette) {
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor back = palette.color(QPalette::Active, QPalette::Window);
    const auto mix = [](int front, int behind) {
        return qRound(front * secondaryShare + behind * (1 - secondaryShare));
    };
    return {mix(text.red(), back.red()), mix(text.green(), back.green()), mix(text.blue(), back.blue())};
}

QColor accentColor(const QPalette& palette) {
    return isDark(palette) ? QColor(0x6e, 0xa8, 0xff) : QColor(0x1a, 0x57, 0xd1);
}

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

int pageWidth(const QFont& base) {
    return std::max(narrowestPage, QFontMetrics(base).averageCharWidth() * charactersPerLine + 2 * margin);
}

QVBoxLayout* column(QWidget* page) {
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(margin, groupSpacing, margin, groupSpacing);
    layout->setSpacing(0);
    return layout;
}

QWidget* divider(QWidget* parent) {
    return new Divider(parent);
}

} // namespace PageStyle

TextLabel::TextLabel(const QString& text, PageStyle::TextRole textRole, QWidget* parent)
    : QLabel(text, parent), role(textRole) {
    setTextFormat(Qt::PlainText);
    setWordWrap(role == PageStyle::TextRole::body || role == PageStyle::TextRole::note);
    setAlignment(Qt::AlignLeading | (wordWrap() ? Qt::AlignTop : Qt::AlignVCenter));
    applyRole();
}

void TextLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    const bool concerned =
        event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationFontChange;
    if (concerned && !applying)
        applyRole();
}

void TextLabel::applyRole() {
    applying = true;
    setFont(PageStyle::font(role, QApplication::font(this)));
    if (role == PageStyle::TextRole::note) {
        // From the application's palette: this label's own one has the mixed colour already.
        const QPalette source = QApplication::palette(this);
        QPalette mixed;
        mixed.setColor(QPalette::WindowText, PageStyle::secondaryColor(source));
        setPalette(mixed);
    }
    applying = false;
}
