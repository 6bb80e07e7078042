#include "Updates/ReleaseNotesView.h"

ReleaseNotesView::ReleaseNotesView(QWidget* parent) : QTextBrowser(parent) {
    setObjectName(QStringLiteral("releaseNotes"));
    setAccessibleName(QStringLiteral("Release Notes"));
    setOpenLinks(false);
    setTabChangesFocus(true);
}
