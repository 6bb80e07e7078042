#pragma once

#include "Overlay/OverlaySession.h"
#include "Overlay/TextCommands.h"

/// The annotated selection as a picture, and where it goes. What is being typed or drawn is finished first
/// and is part of the picture. Without a picture nothing happens.
class OutputCommands {
public:
    OutputCommands(OverlaySession& session, TextCommands& text);

    /// Pixels of the captured image; exactly those when there are no layers.
    std::optional<QImage> outputImage();
    void copySelection();
    void saveSelection();
    /// Commits, closes the colour picker and exports; the caller shares it from its button.
    std::optional<QImage> imageToShare();

private:
    void settle();

    OverlaySession& session;
    TextCommands& text;
};
