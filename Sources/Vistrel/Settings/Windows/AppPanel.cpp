#include "Settings/Windows/AppPanel.h"

#include "App/VistrelIcon.h"
#include "Settings/Windows/PageStyle.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

namespace {

constexpr int glyphSize = 36;
constexpr int contentIndex = 2;

/// The program's glyph in the blue that suits the palette.
class GlyphView : public QWidget {
public:
    explicit GlyphView(QWidget* parent) : QWidget(parent) {
        setFixedSize(glyphSize, glyphSize);
        setAccessibleName(QStringLiteral("Vistrel"));
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        VistrelIcon::draw(painter, QRectF(rect()).adjusted(3, 3, -3, -3), PageStyle::accentColor(palette()));
    }
};

} // namespace

AppPanel::AppPanel(const QString& title, const QString& version, QWidget* parent)
    : QWidget(parent),
      heading(new TextLabel(title, PageStyle::TextRole::title, this)),
      layout(new QVBoxLayout(this)),
      footer(new QHBoxLayout) {
    setObjectName(QStringLiteral("appPanel"));
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    auto* header = new QHBoxLayout;
    header->setContentsMargins(PageStyle::margin, PageStyle::groupSpacing, PageStyle::margin,
                               PageStyle::groupSpacing);
    header->setSpacing(PageStyle::grid + PageStyle::grid / 2);
    header->addWidget(new GlyphView(this));
    header->addWidget(heading, 1);
    heading->setObjectName(QStringLiteral("panelTitle"));
    layout->addLayout(header);
    layout->addWidget(PageStyle::divider(this));
    footer->setSpacing(PageStyle::itemSpacing);
    footer->addStretch();
    footer->addStretch();
    layout->addLayout(footer);
    if (version.isEmpty())
        return;
    auto* text = new TextLabel(QStringLiteral("Version ") + version, PageStyle::TextRole::note, this);
    text->setObjectName(QStringLiteral("panelVersion"));
    text->setWordWrap(false);
    text->setAlignment(Qt::AlignVCenter);
    addToFooter(text);
}

void AppPanel::addToFooter(QWidget* link) {
    if (footer->count() == 2)
        layout->insertWidget(layout->count() - 1, PageStyle::divider(this));
    footer->insertWidget(footer->count() - 1, link);
    footer->setContentsMargins(0, PageStyle::itemSpacing, 0, PageStyle::itemSpacing);
}

void AppPanel::setTitle(const QString& title) {
    heading->setText(title);
}

QString AppPanel::title() const {
    return heading->text();
}

void AppPanel::setContent(QWidget* content) {
    delete shown;
    shown = content;
    layout->insertWidget(contentIndex, content, 1);
    content->show();
}
