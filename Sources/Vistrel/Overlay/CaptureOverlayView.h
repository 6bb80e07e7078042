#pragma once

#include "Annotations/AnnotationTool.h"
#include "Diagnostics/DiagnosticRecord.h"
#include "Settings/EditorPreferences.h"
#include "VistrelCore/Geometry.h"
#include "VistrelPlatform/ScreenCapturer.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

struct CanvasCursor;
struct CanvasState;
struct DecorationLayout;
struct KeyFocus;
struct OverlayEditor;
struct OverlayHooks;

/// The canvas over one display: shows the frozen picture, translates events for the editing rules, and
/// paints what they changed. Main thread. Selection and layers are view points, y up.
class CaptureOverlayView : public QWidget {
    Q_OBJECT
public:
    explicit CaptureOverlayView(EditorPreferences& preferences, QWidget* parent = nullptr);
    ~CaptureOverlayView() override;

    /// A new capture, or none when its image is null. `viewSize` is the display's size in points, never
    /// rounded. Clears the two first-draw callbacks.
    void resetSession(const CapturedImage& captured, double displayScale, Size viewSize);
    bool hasImage() const;
    Rect selection() const;
    AnnotationTool tool() const;
    int layerCount() const;
    int drawingSize() const;
    /// The user works on another display: drops the selection and everything drawn here.
    void clearForOtherDisplay();
    void discardText();
    /// Panels, controls, picture and pointer follow the session.
    void updateGeometry();
    /// Cancels the text being typed, else ends the capture.
    void cancelOperation();
    /// The annotated selection in image pixels; nothing when it touches none.
    std::optional<QImage> outputImage();
    /// Finds the fonts of the badge before a capture needs them.
    void prepareText();
    /// The pointer was asked for, not seen by an event; device pixels of this display, y down.
    void pointerFound(QPoint pixel);
    /// Offers the keys that work whichever control has the keyboard. True when one was meant.
    bool performKeyEquivalent(QKeyEvent& event);

    std::function<void(Diagnostic::Action, Diagnostic::Details)> onDiagnosticEvent;
    std::function<void()> onClose;
    /// The user began to work on this display.
    std::function<void()> onSelection;
    std::function<void(const QImage&)> onCopy;
    std::function<void(const QImage&)> onSave;
    /// The picture and the button under which the share menu opens.
    std::function<void(const QImage&, QWidget* anchor)> onShare;
    /// Called once, at the begin and at the end of the next paint.
    std::function<void()> onFirstDrawStarted;
    std::function<void()> onFirstDraw;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    // The canvas looks the same with and without the keyboard; the default repaints all of it.
    void focusInEvent(QFocusEvent*) override {}
    void focusOutEvent(QFocusEvent*) override {}
    void resizeEvent(QResizeEvent* event) override;

private:
    OverlayHooks makeHooks();
    void press(QMouseEvent* event, int clickCount);
    Point pointerMoved(QPointF position);
    KeyFocus keyFocus() const;
    void share(QWidget& button);
    void updatePanels();
    void repaintChanges();
    void describe(const DecorationLayout& next);
    void refreshCanvasCursor();
    void showCursor(const CanvasCursor& cursor);

    EditorPreferences& preferences;
    std::unique_ptr<CanvasState> canvas;
    std::unique_ptr<OverlayEditor> editor;
};
