#pragma once

#include "Editor/EditorButton.h"

#include <QUuid>

/// Deletes the layer of its row.
class LayerTrashButton : public EditorButton {
    Q_OBJECT
public:
    static constexpr double iconSize = 18;

    explicit LayerTrashButton(QWidget* row) : EditorButton(row) {
        setObjectName(QStringLiteral("layerTrash"));
        // With the keyboard the list itself deletes the row it stands on.
        setFocusPolicy(Qt::NoFocus);
        setIconImage(QStringLiteral("trash"), QStringLiteral("trash"), iconSize);
    }

    void setAnnotationID(const QUuid& id) { layer = id; }
    const QUuid& annotationID() const { return layer; }

private:
    QUuid layer;
};
