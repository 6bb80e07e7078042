#pragma once

#include "VistrelPlatform/Update/AppcastItem.h"

/// Makes a feed's release notes fit to be shown. Any thread.
namespace ReleaseNotes {

/// Well-formed HTML of paragraphs, lists, headings, emphasis and https links; nothing that loads, runs or
/// styles anything. Plain notes keep their lines.
QString html(const QString& notes, bool notesAreHtml);

} // namespace ReleaseNotes
