#include "Updates/ReleaseNotesView.h"

namespace {

constexpr double listIndent = 20;
constexpr double documentMargin = 10;

} // namespace

ReleaseNotesView::ReleaseNotesView(QWidget* parent) : QTextBrowser(parent) {
    setObjectName(QStringLiteral("releaseNotes"));
    setAccessibleName(QStringLiteral("Release Notes"));
    setOpenLinks(false);
    setTabChangesFocus(true);
    document()->setIndentWidth(listIndent);
    document()->setDocumentMargin(documentMargin);
}
