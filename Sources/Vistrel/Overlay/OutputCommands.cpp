#include "Overlay/OutputCommands.h"

#include "Overlay/OverlayExport.h"

OutputCommands::OutputCommands(OverlaySession& overlaySession, TextCommands& textCommands)
    : session(overlaySession), text(textCommands) {}

std::optional<QImage> OutputCommands::outputImage() {
    return OverlayExport::outputImage(session.document, session.renderer);
}

void OutputCommands::settle() {
    text.commit();
    if (session.document.drag) {
        session.completeGesture();
        session.hooks.onChange();
    }
}

void OutputCommands::copySelection() {
    settle();
    if (const auto image = outputImage())
        session.hooks.onCopy(*image);
}

void OutputCommands::saveSelection() {
    settle();
    if (const auto image = outputImage())
        session.hooks.onSave(*image);
}

std::optional<QImage> OutputCommands::imageToShare() {
    settle();
    session.hooks.closeColorPicker();
    return outputImage();
}
