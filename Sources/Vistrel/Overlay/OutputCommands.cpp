#include "Overlay/OutputCommands.h"

#include "Overlay/OverlayExport.h"

OutputCommands::OutputCommands(OverlaySession& overlaySession, TextCommands& textCommands)
    : session(overlaySession), text(textCommands) {}

std::optional<QImage> OutputCommands::outputImage() {
    return OverlayExport::outputImage(session.document, session.renderer);
}

void OutputCommands::copySelection() {
    text.commit();
    if (const auto image = outputImage())
        session.hooks.onCopy(*image);
}

void OutputCommands::saveSelection() {
    text.commit();
    if (const auto image = outputImage())
        session.hooks.onSave(*image);
}

std::optional<QImage> OutputCommands::imageToShare() {
    text.commit();
    session.hooks.closeColorPicker();
    return outputImage();
}
