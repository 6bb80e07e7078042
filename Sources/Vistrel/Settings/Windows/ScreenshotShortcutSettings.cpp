#include "Settings/Windows/ScreenshotShortcutSettings.h"

#include "App/AppController.h"
#include "Settings/Windows/SettingsSymbols.h"
#include "Shortcuts/RecorderButton.h"

#include <QHBoxLayout>
#include <QMessageBox>
#include <QRadioButton>

using PageStyle::TextRole;

namespace {

constexpr int symbolSize = 20;

QVBoxLayout* rowsIn(QWidget* box) {
    auto* rows = new QVBoxLayout(box);
    rows->setContentsMargins(0, PageStyle::groupSpacing, 0, 0);
    rows->setSpacing(PageStyle::itemSpacing);
    return rows;
}

} // namespace

ScreenshotShortcutSettings::ScreenshotShortcutSettings(const PanelSources& given, QWidget* parent)
    : PageView(parent), sources(given), controller(given.controller) {
    setObjectName(QStringLiteral("captureShortcutChooser"));
    addText(QStringLiteral("Screenshot shortcut"), TextRole::heading);
    addSpace(PageStyle::itemSpacing);
    addText(QStringLiteral("Would you like to change the screenshot shortcut?"), TextRole::body);
    addSpace(PageStyle::groupSpacing);
    addChoices();
    current = addText(QString(), TextRole::note);
    current->setObjectName(QStringLiteral("currentShortcut"));
    addRecorder();
    addWarning();
    addSpace(PageStyle::margin);
    applyButton = new PageButton(QStringLiteral("&Apply"), QStringLiteral("applyCaptureShortcut"), this);
    connect(applyButton, &QPushButton::clicked, this, &ScreenshotShortcutSettings::apply);
    addButtons({applyButton});
    setDefaultButton(applyButton);

    for (const auto signal :
         {&AppController::shortcutLabelChanged, &AppController::shortcutMessageChanged,
          &AppController::shortcutChangeFailedChanged, &AppController::permissionGrantedChanged})
        connect(&controller, signal, this, &ScreenshotShortcutSettings::refresh);
    connect(&controller, &AppController::shortcutAlertChanged, this,
            &ScreenshotShortcutSettings::presentAlert, Qt::QueuedConnection);
    restoreChoice();
    refresh();
}

void ScreenshotShortcutSettings::addChoices() {
    keepDefault = new QRadioButton(QStringLiteral("&Use ⌘⇧9"), this);
    keepDefault->setObjectName(QStringLiteral("keepDefaultShortcut"));
    custom = new QRadioButton(QStringLiteral("&Choose a custom shortcut"), this);
    custom->setObjectName(QStringLiteral("chooseCustomShortcut"));
    for (QRadioButton* button : {keepDefault, custom}) {
        button->setAccessibleName(withoutMnemonic(button->text()));
        add(button);
        addSpace(PageStyle::itemSpacing);
    }
    connect(keepDefault, &QRadioButton::clicked, this, [this] { setChoice(Choice::keepDefault); });
    connect(custom, &QRadioButton::clicked, this, [this] { setChoice(Choice::custom); });
}

void ScreenshotShortcutSettings::addRecorder() {
    recorderRows = new QWidget(this);
    QVBoxLayout* rows = rowsIn(recorderRows);
    ShortcutRecorder description;
    description.onChange = [this](const ScreenshotShortcut& shortcut) {
        customAccepted = controller.choose(shortcut);
        refresh();
    };
    // The button outlives this page's members by a moment.
    description.onListening = [&owner = controller](bool listening) {
        owner.setRecordingShortcut(listening);
    };
    description.unmodifiedText = sources.unmodifiedText;
    RecorderButton* recorder = description.makeButton(recorderRows);
    recorder->setObjectName(QStringLiteral("recordShortcut"));
    recorder->setMinimumSize(makeRoom(*recorder, QStringLiteral("Press shortcut… (Esc cancels)")));
    rows->addWidget(recorder, 0, Qt::AlignLeading);
    recorderHint = new TextLabel(QString(), TextRole::note, recorderRows);
    rows->addWidget(recorderHint);
    add(recorderRows);
}

void ScreenshotShortcutSettings::addWarning() {
    warningRows = new QWidget(this);
    warningRows->setObjectName(QStringLiteral("shortcutWarning"));
    QVBoxLayout* rows = rowsIn(warningRows);
    auto* row = new QHBoxLayout;
    row->setSpacing(PageStyle::itemSpacing);
    row->addWidget(
        new SymbolView(SettingsSymbols::Symbol::warning, symbolSize, QStringLiteral("Warning"), warningRows),
        0, Qt::AlignTop);
    warningText = new TextLabel(QString(), TextRole::body, warningRows);
    warningText->setObjectName(QStringLiteral("shortcutMessage"));
    row->addWidget(warningText, 1);
    rows->addLayout(row);
    rows->addWidget(new TextLabel(
        QStringLiteral(
            "If macOS reserves your choice, change or disable it in Keyboard → Keyboard Shortcuts → "
            "Screenshots, then record it again. Vistrel does not change system shortcuts."),
        TextRole::note, warningRows));
    QPushButton* open = new PageButton(QStringLiteral("&Open macOS Keyboard Shortcuts"),
                                       QStringLiteral("openKeyboardShortcuts"), warningRows);
    connect(open, &QPushButton::clicked, this,
            [this] { controller.openSettings(SettingsPage::keyboardShortcuts); });
    rows->addWidget(open, 0, Qt::AlignLeading);
    add(warningRows);
}

void ScreenshotShortcutSettings::restoreChoice() {
    const std::vector<ScreenshotShortcut> registered = controller.registeredShortcuts();
    if (!registered.empty()) {
        chosen = registered.front() == ScreenshotShortcut::defaultShortcut() ? Choice::keepDefault
                                                                             : Choice::custom;
        customAccepted = chosen == Choice::custom;
    }
}

void ScreenshotShortcutSettings::setChoice(Choice choice) {
    chosen = choice;
    refresh();
}

void ScreenshotShortcutSettings::refresh() {
    const QString label = controller.shortcutLabel();
    keepDefault->setChecked(chosen == Choice::keepDefault);
    custom->setChecked(chosen == Choice::custom);
    current->setText(QStringLiteral("Default: ⌘⇧9. Current shortcut: %1.").arg(label));
    recorderRows->setVisible(chosen == Choice::custom);
    recorderHint->setText(QStringLiteral("Use ⌘ or ⌃, or Print Screen alone (may appear as F13). Active: ") +
                          label);
    warningRows->setVisible(controller.shortcutChangeFailed());
    warningText->setText(controller.shortcutMessage());
    applyButton->setEnabled(controller.permissionGranted() &&
                            (chosen == Choice::keepDefault || customAccepted));
}

void ScreenshotShortcutSettings::apply() {
    if (chosen == Choice::keepDefault && !controller.choose(ScreenshotShortcut::defaultShortcut()))
        return;
    controller.completeOnboarding();
}

void ScreenshotShortcutSettings::presentAlert() {
    const auto alert = controller.shortcutAlert();
    // Every assignment is told, also the one that takes the last alert back.
    if (!alert || std::exchange(presented, alert->id) == alert->id)
        return;
    auto* box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Vistrel"),
                                QStringLiteral("Capture shortcut wasn't changed"), QMessageBox::Ok, window());
    box->setObjectName(QStringLiteral("shortcutAlert"));
    box->setInformativeText(alert->message);
    box->setAttribute(Qt::WA_DeleteOnClose);
    connect(box, &QMessageBox::finished, &controller, &AppController::clearShortcutAlert);
    box->open();
}
