#pragma once

#include <QFont>
#include <QVBoxLayout>

/// What the updater's windows have in common. Points.
namespace UpdateDialogStyle {

inline constexpr int margin = 20;
inline constexpr int spacing = 12;
/// Of the text in a message: wider than a message box makes it by itself.
inline constexpr int textWidth = 340;

inline void apply(QVBoxLayout& layout) {
    layout.setContentsMargins(margin, margin, margin, margin);
    layout.setSpacing(spacing);
}

inline QFont heading(QFont font) {
    font.setBold(true);
    return font;
}

} // namespace UpdateDialogStyle
