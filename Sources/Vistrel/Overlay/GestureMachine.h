#pragma once

#include "Overlay/OverlayEvents.h"
#include "Overlay/OverlaySession.h"
#include "Overlay/TextCommands.h"

/// The pointer's gestures: one idle state and the seven of `Drag`. A press begins one, every move and
/// the release apply the pointer's place to what the press began with.
class GestureMachine {
public:
    GestureMachine(OverlaySession& session, TextCommands& text);

    void press(const PointerEvent& event);
    void drag(Point location);
    void release(Point location);

private:
    void cancelFromOutside();
    void begin(Point p, int clickCount);
    bool beginOnLayer(Point p, int clickCount);
    bool beginOnSelection(Point p);
    void beginDrawing(Point p);
    void beginLayerChange(Drag drag);

    void apply(Creation& creation, Point p);
    void apply(const MoveSelection& move, Point p);
    void apply(const ResizeSelection& resize, Point p);
    void apply(const MoveAnnotation& move, Point p);
    void apply(const ResizeAnnotation& resize, Point p);
    void apply(const DragEndpoint& endpoint, Point p);
    void apply(const Annotate& annotate, Point p);
    void applyDrag(Point p);

    Point towardsEdge(Point p) const;

    OverlaySession& session;
    TextCommands& text;
    /// The last press was outside the selection and came to nothing: the first half of a double click there.
    bool clickedOutside = false;
};
