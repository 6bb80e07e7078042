#pragma once

#include <QStringList>

/// The desktops whose own tables and settings programs are known.
enum class Desktop { unknown, gnome, cinnamon, mate, kde, xfce, lxqt };

/// From the names of `XDG_CURRENT_DESKTOP`, the most specific first.
Desktop desktopNamed(const QStringList& names);

/// The names of the running session.
QStringList currentDesktopNames();
