#include "Settings/Windows/AppearanceSettingsView.h"

#include "Settings/EditorPreferences.h"
#include "Settings/Windows/DiagnosticHistorySettingsView.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QSlider>

using PageStyle::TextRole;

namespace {

constexpr int smallestScale = 50;
constexpr int largestScale = 150;
constexpr double normalScale = 100;
constexpr int percentWidth = 48;

QString percent(double scale) {
    return QStringLiteral("%1%").arg(qRound(scale));
}

} // namespace

AppearanceSettingsView::AppearanceSettingsView(Sources sources, std::function<void()> onDone, QWidget* parent)
    : PageView(parent) {
    setObjectName(QStringLiteral("appearancePage"));
    EditorPreferences& preferences = sources.preferences;
    addPanelSize(preferences);
    addDivider();

    QCheckBox* cancels =
        addCheckBox(QStringLiteral("Dou&ble-click outside the selection to cancel"),
                    QStringLiteral("doubleClickOutsideToCancel"),
                    QStringLiteral("Closes the overlay without saving or copying, like Escape."));
    cancels->setChecked(preferences.doubleClickOutsideToCancel());
    connect(cancels, &QCheckBox::toggled, &preferences, &EditorPreferences::setDoubleClickOutsideToCancel);
    connect(&preferences, &EditorPreferences::doubleClickOutsideToCancelChanged, cancels,
            [cancels, &preferences] { cancels->setChecked(preferences.doubleClickOutsideToCancel()); });
    addSpace(PageStyle::groupSpacing);

    QCheckBox* reduces = addCheckBox(
        QStringLiteral("&Reduce Retina screenshots by 2×"), QStringLiteral("downscaleRetinaScreenshots"),
        QStringLiteral(
            "Half the width and height for Copy and Save, with doubled drawing sizes (3 draws at 6 "
            "pixels). Turn off for full resolution. Applies to your next capture; 1× displays stay "
            "unchanged."));
    reduces->setChecked(preferences.downscaleRetinaScreenshots());
    connect(reduces, &QCheckBox::toggled, &preferences, &EditorPreferences::setDownscaleRetinaScreenshots);
    connect(&preferences, &EditorPreferences::downscaleRetinaScreenshotsChanged, reduces,
            [reduces, &preferences] { reduces->setChecked(preferences.downscaleRetinaScreenshots()); });
    addSpace(PageStyle::groupSpacing);

    addSaveFormat(preferences);
    addDivider();
    add(new DiagnosticHistorySettingsView(sources.journal, sources.defaults, this));
    addSpace(PageStyle::groupSpacing);
    QPushButton* done = new PageButton(QStringLiteral("&Done"), QStringLiteral("appearanceDone"), this);
    connect(done, &QPushButton::clicked, this, [onDone = std::move(onDone)] { onDone(); });
    addButtons({done});
    setDefaultButton(done);
}

void AppearanceSettingsView::addPanelSize(EditorPreferences& preferences) {
    const QString title = QStringLiteral("&Editor panel size");
    auto* label = new TextLabel(title, TextRole::heading, this);
    auto* slider = new QSlider(Qt::Horizontal, this);
    slider->setObjectName(QStringLiteral("editorPanelSize"));
    slider->setAccessibleName(withoutMnemonic(title));
    slider->setRange(smallestScale, largestScale);
    slider->setSingleStep(1);
    slider->setPageStep(10);
    label->setBuddy(slider);
    auto* value = new TextLabel(QString(), TextRole::body, this);
    value->setObjectName(QStringLiteral("editorPanelPercent"));
    value->setWordWrap(false);
    value->setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
    value->setFixedWidth(
        std::max(percentWidth, value->fontMetrics().horizontalAdvance(percent(largestScale))));
    QPushButton* reset =
        new PageButton(QStringLiteral("Reset to &100%"), QStringLiteral("resetEditorPanelSize"), this);

    auto* row = new QHBoxLayout;
    row->setSpacing(PageStyle::itemSpacing);
    row->addWidget(label);
    row->addSpacing(PageStyle::itemSpacing);
    row->addWidget(slider, 1);
    row->addWidget(value);
    row->addSpacing(PageStyle::itemSpacing);
    row->addWidget(reset);
    add(row);
    addSpace(PageStyle::itemSpacing);
    addText(
        QStringLiteral("Scales Tools, Layers and Record/Save/Copy. Drawing sizes stay unchanged. Size digits "
                       "scale with a readable minimum. Large panels fit to the display."),
        TextRole::note);

    const auto show = [slider, value, reset, &preferences] {
        const QSignalBlocker silent(slider);
        slider->setValue(qRound(preferences.scalePercent()));
        value->setText(percent(preferences.scalePercent()));
        reset->setEnabled(preferences.scalePercent() != normalScale);
    };
    show();
    connect(&preferences, &EditorPreferences::scalePercentChanged, slider, show);
    connect(slider, &QSlider::valueChanged, &preferences, &EditorPreferences::setScalePercent);
    connect(reset, &QPushButton::clicked, &preferences,
            [&preferences] { preferences.setScalePercent(normalScale); });
}

QCheckBox* AppearanceSettingsView::addCheckBox(const QString& text, const QString& objectName,
                                               const QString& note) {
    auto* box = new QCheckBox(text, this);
    box->setObjectName(objectName);
    box->setAccessibleName(withoutMnemonic(text));
    box->setAccessibleDescription(note);
    add(box);
    addSpace(PageStyle::grid / 2);
    add(noteUnder(*box, note, this));
    return box;
}

void AppearanceSettingsView::addSaveFormat(EditorPreferences& preferences) {
    const QString title = QStringLiteral("Save &format");
    auto* label = new TextLabel(title, TextRole::heading, this);
    auto* picker = new QComboBox(this);
    picker->setObjectName(QStringLiteral("saveFormat"));
    picker->setAccessibleName(withoutMnemonic(title));
    picker->setMinimumWidth(10 * PageStyle::grid);
    label->setBuddy(picker);
    for (const ScreenshotSaveFormat format : {ScreenshotSaveFormat::png, ScreenshotSaveFormat::jpg})
        picker->addItem(rawValue(format), static_cast<int>(format));

    auto* row = new QHBoxLayout;
    row->setSpacing(PageStyle::groupSpacing);
    row->addWidget(label);
    row->addWidget(picker);
    row->addStretch();
    add(row);
    addSpace(PageStyle::itemSpacing);
    addText(QStringLiteral("JPG/JPEG saves as .jpg at 95% quality. Copy always uses PNG."), TextRole::note);

    const auto show = [picker, &preferences] {
        const QSignalBlocker silent(picker);
        picker->setCurrentIndex(picker->findData(static_cast<int>(preferences.saveFormat())));
    };
    show();
    connect(&preferences, &EditorPreferences::saveFormatChanged, picker, show);
    connect(picker, &QComboBox::activated, &preferences, [picker, &preferences] {
        preferences.setSaveFormat(static_cast<ScreenshotSaveFormat>(picker->currentData().toInt()));
    });
}
