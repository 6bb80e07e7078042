#include "Updates/UpdateOfferDialog.h"

#include "Updates/ReleaseNotesView.h"
#include "Updates/UpdateDialogStyle.h"
#include "VistrelPlatform/Update/ReleaseNotes.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int dialogWidth = 520;
constexpr int heightWithNotes = 420;

/// Where somebody finds the new version who updates without us.
QUrl pageOf(const AppcastItem& item) {
    return item.link.isEmpty() ? item.archive : item.link;
}

} // namespace

UpdateOfferDialog::UpdateOfferDialog(const UpdateOffer& offer, QWidget* parent)
    : QDialog(parent), onOpenPage([](const QUrl& page) { QDesktopServices::openUrl(page); }) {
    setWindowTitle(QStringLiteral("Vistrel Update"));
    setObjectName(QStringLiteral("updateOffer"));
    setAccessibleName(QStringLiteral("Vistrel Update"));
    auto* layout = new QVBoxLayout(this);
    UpdateDialogStyle::apply(*layout);
    addTexts(offer, *layout);
    addNotes(offer, *layout);
    addButtons(offer, *layout);
    resize(dialogWidth,
           offer.item.notes.isEmpty() ? layout->totalHeightForWidth(dialogWidth) : heightWithNotes);
}

void UpdateOfferDialog::addTexts(const UpdateOffer& offer, QVBoxLayout& layout) {
    auto* heading = new QLabel(QStringLiteral("A new version of Vistrel is available"), this);
    heading->setFont(UpdateDialogStyle::heading(heading->font()));
    QString text = QStringLiteral("Vistrel %1 is available; you have %2.")
                       .arg(offer.item.displayVersion, offer.currentVersion);
    if (!offer.installable)
        text +=
            QStringLiteral(" This copy was installed by your system’s package manager or for all users, so "
                           "Vistrel does not replace it. Update it the way it was installed; the new "
                           "version is at %1.")
                .arg(pageOf(offer.item).toDisplayString());
    auto* description = new QLabel(text, this);
    description->setObjectName(QStringLiteral("updateDescription"));
    description->setTextFormat(Qt::PlainText);
    description->setTextInteractionFlags(Qt::TextSelectableByMouse);
    description->setWordWrap(true);
    setAccessibleDescription(text);
    layout.addWidget(heading);
    layout.addWidget(description);
}

void UpdateOfferDialog::addNotes(const UpdateOffer& offer, QVBoxLayout& layout) {
    if (offer.item.notes.isEmpty())
        return;
    auto* notes = new ReleaseNotesView(this);
    notes->setHtml(ReleaseNotes::html(offer.item.notes, offer.item.notesAreHtml));
    connect(notes, &QTextBrowser::anchorClicked, this, [this](const QUrl& page) {
        if (page.scheme() == QLatin1String("https"))
            onOpenPage(page);
    });
    layout.addWidget(notes, 1);
}

void UpdateOfferDialog::addButtons(const UpdateOffer& offer, QVBoxLayout& layout) {
    auto* buttons = new QHBoxLayout;
    const auto add = [&](const QString& text, const char* name) {
        auto* button = new QPushButton(text, this);
        button->setObjectName(QLatin1String(name));
        button->setAutoDefault(false);
        buttons->addWidget(button);
        return button;
    };
    auto* skip = add(QStringLiteral("Skip this version"), "updateSkip");
    connect(skip, &QPushButton::clicked, this, [this] { choose(UpdateChoice::skip); });
    buttons->addStretch(1);
    auto* later = add(QStringLiteral("Remind me later"), "updateLater");
    connect(later, &QPushButton::clicked, this, [this] { choose(UpdateChoice::remindLater); });
    QPushButton* preferred = later;
    if (offer.installable) {
        preferred = add(QStringLiteral("Install"), "updateInstall");
        connect(preferred, &QPushButton::clicked, this, [this] { choose(UpdateChoice::install); });
    } else {
        preferred = add(QStringLiteral("Open web page"), "updateOpenPage");
        connect(preferred, &QPushButton::clicked, this, [this, page = pageOf(offer.item)] {
            onOpenPage(page);
            choose(UpdateChoice::remindLater);
        });
    }
    preferred->setDefault(true);
    preferred->setFocus();
    layout.addLayout(buttons);
}

void UpdateOfferDialog::choose(UpdateChoice choice) {
    chosen = choice;
    accept();
}

void UpdateOfferDialog::done(int result) {
    QDialog::done(result);
    const auto report = std::move(onChoice);
    onChoice = nullptr;
    if (report)
        report(chosen);
}
