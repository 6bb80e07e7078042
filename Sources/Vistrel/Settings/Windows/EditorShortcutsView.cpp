#include "Settings/Windows/EditorShortcutsView.h"

#include "App/AppController.h"

#include <QGridLayout>
#include <QHBoxLayout>

using PageStyle::TextRole;

EditorShortcutsView::EditorShortcutsView(AppController& controller, std::function<void()> onDone,
                                         QWidget* parent)
    : PageView(parent) {
    setObjectName(QStringLiteral("shortcutsPage"));
    add(captureRow(controller));
    addDivider();
    auto* tables = new QHBoxLayout;
    tables->setSpacing(2 * PageStyle::margin);
    tables->addWidget(table(QStringLiteral("Tools"), EditorShortcutEntry::tools()), 5, Qt::AlignTop);
    tables->addWidget(table(QStringLiteral("Actions"), EditorShortcutEntry::actions()), 6, Qt::AlignTop);
    add(tables);
    addDivider();
    addText(
        QStringLiteral("These shortcuts work in the screenshot overlay. While typing text or a size, keys "
                       "enter characters. Escape first cancels text editing, then capture."),
        TextRole::note);
    addSpace(PageStyle::groupSpacing);
    QPushButton* done = new PageButton(QStringLiteral("&Done"), QStringLiteral("shortcutsDone"), this);
    connect(done, &QPushButton::clicked, this, [onDone = std::move(onDone)] { onDone(); });
    addButtons({done});
}

QLayout* EditorShortcutsView::captureRow(AppController& controller) {
    auto* row = new QHBoxLayout;
    row->setSpacing(PageStyle::groupSpacing);
    auto* title = new TextLabel(QStringLiteral("Capture shortcut"), TextRole::heading, this);
    auto* current = new TextLabel(controller.shortcutLabel(), TextRole::body, this);
    current->setObjectName(QStringLiteral("captureShortcut"));
    current->setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
    connect(&controller, &AppController::shortcutLabelChanged, current,
            [current, &controller] { current->setText(controller.shortcutLabel()); });
    QPushButton* change =
        new PageButton(QStringLiteral("&Change…"), QStringLiteral("changeCaptureShortcut"), this);
    // Later: this page goes away with the window's content.
    connect(change, &QPushButton::clicked, &controller, &AppController::showCaptureShortcutSetup,
            Qt::QueuedConnection);
    row->addWidget(title);
    row->addWidget(current, 1);
    row->addWidget(change);
    return row;
}

QWidget* EditorShortcutsView::table(const QString& title, const std::vector<EditorShortcutEntry>& entries) {
    auto* box = new QWidget(this);
    box->setAccessibleName(title);
    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(PageStyle::grid / 2);
    grid->setHorizontalSpacing(PageStyle::groupSpacing);
    grid->setColumnStretch(0, 1);
    auto* heading = new TextLabel(title, TextRole::heading, box);
    grid->addWidget(heading, 0, 0, 1, 2, Qt::AlignTop);
    grid->setRowMinimumHeight(0, heading->sizeHint().height() + PageStyle::grid / 2);
    int row = 1;
    for (const EditorShortcutEntry& entry : entries) {
        auto* name = new TextLabel(entry.title, TextRole::body, box);
        name->setWordWrap(false);
        auto* keys = new TextLabel(entry.keys, TextRole::body, box);
        keys->setWordWrap(false);
        keys->setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
        name->setAccessibleDescription(entry.keys);
        grid->addWidget(name, row, 0);
        grid->addWidget(keys, row, 1);
        ++row;
    }
    return box;
}
