#include "Editor/EditorAccessibility.h"

#include "Editor/EditorActionBar.h"
#include "Editor/EditorButton.h"
#include "Editor/EditorPanel.h"
#include "Editor/LayerIcon.h"
#include "Editor/LayerLabel.h"
#include "Editor/LayerRowView.h"
#include "Editor/LayerTableView.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace {

/// A layer: pressing it selects the layer, and it can be deleted without finding the trash button.
class LayerRowAccessible : public QAccessibleWidget {
public:
    explicit LayerRowAccessible(LayerRowView& rowView) : QAccessibleWidget(&rowView, QAccessible::ListItem) {}

    QAccessible::State state() const override {
        QAccessible::State result = QAccessibleWidget::state();
        result.selectable = true;
        result.focusable = true;
        result.selected = view().isChosen();
        return result;
    }
    QStringList actionNames() const override { return {pressAction(), deleteAction()}; }
    QString localizedActionDescription(const QString& action) const override {
        return action == deleteAction() ? QStringLiteral("Deletes the layer")
                                        : QStringLiteral("Selects the layer");
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }
    void doAction(const QString& action) override {
        if (action == pressAction())
            view().choose();
        else if (action == deleteAction())
            view().remove();
    }

private:
    static QString deleteAction() { return QStringLiteral("Delete"); }
    LayerRowView& view() const { return *static_cast<LayerRowView*>(widget()); }
};

/// The handle of a layer: pressing it selects the layer.
class LayerIconAccessible : public QAccessibleWidget {
public:
    explicit LayerIconAccessible(LayerIcon& icon) : QAccessibleWidget(&icon, QAccessible::Button) {}

    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& action) override {
        if (action == pressAction())
            static_cast<LayerRowView*>(widget()->parentWidget())->choose();
    }
};

/// A tool is one of several choices, any other button a plain one; pressing either is a click.
class EditorButtonAccessible : public QAccessibleWidget {
public:
    explicit EditorButtonAccessible(EditorButton& shown) : QAccessibleWidget(&shown, QAccessible::Button) {}

    QAccessible::Role role() const override {
        return button().isCheckable() ? QAccessible::RadioButton : QAccessible::Button;
    }

    QString text(QAccessible::Text kind) const override {
        const QString result = QAccessibleWidget::text(kind);
        return kind == QAccessible::Name && result.isEmpty() ? button().text() : result;
    }
    QAccessible::State state() const override {
        QAccessible::State result = QAccessibleWidget::state();
        result.checkable = button().isCheckable();
        result.checked = button().isHighlighted();
        result.pressed = button().isDown();
        return result;
    }
    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString& action) override {
        if (action == pressAction())
            button().click();
        else
            QAccessibleWidget::doAction(action);
    }

private:
    EditorButton& button() const { return *static_cast<EditorButton*>(widget()); }
};

QAccessibleInterface* make(const QString&, QObject* object) {
    if (auto* button = qobject_cast<EditorButton*>(object))
        return new EditorButtonAccessible(*button);
    if (auto* row = qobject_cast<LayerRowView*>(object))
        return new LayerRowAccessible(*row);
    if (auto* icon = qobject_cast<LayerIcon*>(object))
        return new LayerIconAccessible(*icon);
    if (auto* label = qobject_cast<LayerLabel*>(object))
        return new QAccessibleWidget(label, QAccessible::StaticText);
    if (auto* table = qobject_cast<LayerTableView*>(object))
        return new QAccessibleWidget(table, QAccessible::List);
    if (auto* bar = qobject_cast<EditorActionBar*>(object))
        return new QAccessibleWidget(bar, QAccessible::ToolBar);
    if (auto* panel = qobject_cast<EditorPanel*>(object))
        return new QAccessibleWidget(panel, QAccessible::ToolBar);
    return nullptr;
}

} // namespace

void EditorAccessibility::install() {
    static const bool installed = [] {
        QAccessible::installFactory(make);
        return true;
    }();
    Q_UNUSED(installed)
}
