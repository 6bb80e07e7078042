#include "VistrelPlatform/Freedesktop/DesktopName.h"

#include <array>

Desktop desktopNamed(const QStringList& names) {
    struct Row {
        const char* name;
        Desktop desktop;
    };
    static constexpr std::array rows = {
        Row{"X-Cinnamon", Desktop::cinnamon}, Row{"Cinnamon", Desktop::cinnamon},
        Row{"MATE", Desktop::mate},           Row{"KDE", Desktop::kde},
        Row{"XFCE", Desktop::xfce},           Row{"LXQt", Desktop::lxqt},
        Row{"GNOME", Desktop::gnome},         Row{"Unity", Desktop::gnome}};
    for (const QString& name : names) {
        for (const Row& row : rows) {
            if (name.compare(QLatin1StringView(row.name), Qt::CaseInsensitive) == 0)
                return row.desktop;
        }
    }
    return Desktop::unknown;
}

QStringList currentDesktopNames() {
    return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts);
}
