#pragma once

#include <QColor>
#include <QFont>
#include <QLabel>

class QVBoxLayout;

/// The measures and the one type scale of the settings and setup windows. Points.
namespace PageStyle {

/// Every distance is a multiple of this.
inline constexpr int grid = 8;
inline constexpr int margin = 3 * grid;
/// Between things that belong together, and between groups.
inline constexpr int itemSpacing = grid;
inline constexpr int groupSpacing = 2 * grid;
inline constexpr int narrowestPage = 520;

enum class TextRole { title, heading, body, note };

QFont font(TextRole role, const QFont& base);
/// Readable, but behind the text proper.
QColor secondaryColor(const QPalette& palette);
/// Of the program's glyph and of links.
QColor accentColor(const QPalette& palette);
bool isDark(const QPalette& palette);
/// Wide enough for the texts in the system's font.
int pageWidth(const QFont& base);
/// A page's column: the grid's margins, no spacing of its own.
QVBoxLayout* column(QWidget* page);
QWidget* divider(QWidget* parent);

} // namespace PageStyle

/// A text of the type scale. Notes and bodies wrap; notes keep the secondary colour in every palette.
class TextLabel : public QLabel {
    Q_OBJECT
public:
    TextLabel(const QString& text, PageStyle::TextRole textRole, QWidget* parent = nullptr);

protected:
    void changeEvent(QEvent* event) override;

private:
    void applyRole();

    PageStyle::TextRole role;
    bool applying = false;
};
