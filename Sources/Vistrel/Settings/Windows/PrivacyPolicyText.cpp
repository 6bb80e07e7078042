#include "Settings/Windows/PrivacyPolicyView.h"

namespace {

QStringList updateParagraphs(const QString& host) {
    const QString server = host.isEmpty() ? QStringLiteral("the update server") : host;
    return {
        QStringLiteral("Update checks contact %1. Its hosting services receive your IP address and an update "
                       "request that identifies the Vistrel and update framework versions. Screenshots and "
                       "drawings are never included, and system profiling is disabled. You can turn off "
                       "automatic checks in Settings → Updates and check manually there.")
            .arg(server)};
}

QStringList reportParagraphs(const QString& maker) {
    return {QStringLiteral(
                "Vistrel keeps a local diagnostic history of actions, capture durations, tool sizes and "
                "error codes for up to 7 days within 1 MB. It excludes images, typed annotation text, "
                "clipboard contents and file paths. Settings → Appearance → Diagnostics turns it off or "
                "clears it; turning it off clears it."),
            QStringLiteral(
                "Nothing is sent automatically. Send Report in Support sends recent diagnostic events, app "
                "and Mac details, a random installation ID and your optional comment to %1 through its "
                "hosting provider. No e-mail address is requested. Active reports are kept for up to 30 "
                "days within the latest 100 reports, and provider recovery copies may remain for another "
                "30 days.")
                .arg(maker)};
}

} // namespace

std::vector<PrivacyPolicyView::Section> PrivacyPolicyView::sections(const Publisher& publisher) {
    const QString maker = publisher.maker.isEmpty() ? QStringLiteral("Orvane") : publisher.maker;
    return {
        {QStringLiteral("Screenshot processing stays on your Mac"),
         {QStringLiteral(
             "Vistrel processes screenshots and drawings locally. It does not upload them, include "
             "analytics or advertising tools, or require an account.")}},
        {QStringLiteral("Capture and storage"),
         {QStringLiteral(
             "Vistrel captures only when you request a screenshot. It does not capture while idle, "
             "keep screen history, or capture audio. Session images and drawings are held in memory "
             "and released when you close the session. Escape does not save or copy them.")}},
        {QStringLiteral("Copy, Save, and Share"),
         {QStringLiteral(
              "Copy puts your image on the macOS clipboard. Save writes a PNG or JPEG to the location "
              "you confirm. Other apps and Universal Clipboard may access copied images; iCloud Drive "
              "or another synced folder may upload saved files according to your settings. Vistrel "
              "does not perform those transfers."),
          QStringLiteral(
              "Share opens the native macOS picker. Opening it sends nothing. Choosing a service gives "
              "it your annotated image; that service may send it off your Mac under its own settings "
              "and policies. Vistrel does not send screenshots to an Orvane server.")}},
        {QStringLiteral("Updates"), updateParagraphs(publisher.updateHost)},
        {QStringLiteral("Voluntary problem reports"), reportParagraphs(maker)},
        {QStringLiteral("Settings and your controls"),
         {QStringLiteral(
             "Shortcut and appearance settings and setup progress are stored locally. Errors are shown "
             "locally and are not automatically sent to us. You can revoke screen capture access in "
             "System Settings, delete saved files, or replace clipboard content. Uninstalling Vistrel "
             "does not delete exported images or all preferences.")}},
    };
}
