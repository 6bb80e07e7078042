#pragma once

#include "Overlay/OverlayEditor.h"

#include <gtest/gtest.h>

/// A text editor that holds what a test types: every character is 10 points wide, one line high.
class TypedText : public TextEditing {
public:
    TypedText(TypedText*& slot, const TextEditorSetup& start) : setup(start), open(slot) { open = this; }
    ~TypedText() override { open = nullptr; }

    QString text() override { return setup.text; }
    double fontSize() const override { return setup.fontSize; }
    void setFontSize(double size) override { setup.fontSize = size; }
    void setColor(const QColor& color) override { setup.color = color; }
    Rect fittedFrame() override {
        const double width = 10.0 * static_cast<double>(setup.text.size());
        return {setup.anchor.x, setup.anchor.y - setup.fontSize, width, setup.fontSize};
    }
    void focus() override {}
    bool hasFocus() const override { return true; }

    TextEditorSetup setup;

private:
    TypedText*& open;
};

/// The editing rules over a 400 × 300 point display with one image pixel per point, and a record of
/// everything they ask of the canvas.
class OverlayFixture : public ::testing::Test {
protected:
    using Action = Diagnostic::Action;

    OverlayFixture() {
        editor.session.hooks = {
            .onDiagnosticEvent = [this](Action action,
                                        const Diagnostic::Details&) { actions.push_back(action); },
            .onClose = [this] { ++closed; },
            .onSelection = [] {},
            .onCopy = [this](const QImage& image) { copied = image; },
            .onSave = [this](const QImage& image) { saved = image; },
            .onChange = [] {},
            .focusCanvas = [] {},
            .closeColorPicker = [] {},
            .doubleClickOutsideToCancel = [this] { return doubleClickCancels; },
            .openTextEditor =
                [this](const TextEditorSetup& setup) { return std::make_unique<TypedText>(typed, setup); }};
        show({400, 300}, {400, 300}, 1);
    }

    void show(Size view, QSize pixels, double scale) {
        QImage image(pixels, QImage::Format_RGB32);
        image.fill(Qt::gray);
        document.reset(image, scale, view);
        actions.clear();
    }

    void press(Point p, int clicks = 1) { editor.gestures.press({.location = p, .clickCount = clicks}); }
    void drag(Point p) { editor.gestures.drag(p); }
    void release(Point p) { editor.gestures.release(p); }
    void stroke(const std::vector<Point>& points) {
        press(points.front());
        for (const Point p : points)
            drag(p);
        release(points.back());
    }
    /// A selection from (50, 50) to (350, 250) that nothing else was done with yet.
    void select(const Rect& rect = {50, 50, 300, 200}) {
        document.selection = rect;
        actions.clear();
    }
    EditorAnnotation& add(AnnotationTool tool, std::vector<Point> points, double width = 3) {
        document.state.annotations.push_back({.id = QUuid::createUuid(),
                                              .tool = tool,
                                              .width = width,
                                              .size = static_cast<int>(width),
                                              .color = Qt::red,
                                              .points = std::move(points),
                                              .text = {}});
        return document.state.annotations.back();
    }
    EditorAnnotation& addSelected(AnnotationTool tool, std::vector<Point> points, double width = 3) {
        EditorAnnotation& layer = add(tool, std::move(points), width);
        document.state.selectedID = layer.id;
        return layer;
    }
    const std::vector<EditorAnnotation>& layers() const { return document.state.annotations; }
    std::size_t undoSteps() const { return document.history.past.size(); }

    bool key(KeyCode code, const QString& characters = {}, ModifierMask modifiers = 0, KeyFocus focus = {}) {
        return editor.keys.keyDown({.keyCode = code, .modifiers = modifiers, .characters = characters},
                                   focus);
    }
    bool type(const char16_t* characters, ModifierMask modifiers = 0, KeyFocus focus = {}) {
        return key(KeyEvent::unknownKey, QString::fromUtf16(characters), modifiers, focus);
    }

    bool doubleClickCancels = true;
    OverlayEditor editor;
    OverlayDocument& document = editor.session.document;
    TypedText* typed = nullptr;
    std::vector<Action> actions;
    QImage copied;
    QImage saved;
    int closed = 0;
};
