#include "VistrelPlatform/X11/X11DisplayFilter.h"

#include "VistrelPlatform/X11/AreaScaler.h"
#include "VistrelPlatform/X11/X11FrozenPicture.h"

#include <algorithm>

namespace {

constexpr std::uint32_t allPlanes = ~0U;

PixelSize sizeOf(QRect rect) {
    return {rect.width(), rect.height()};
}

/// What the toolkit has already asked for must have happened: a menu that was just closed is unmapped on
/// its connection, not on ours.
void awaitToolkit() {
    if (xcb_connection_t* toolkit = toolkitConnection())
        xcbReply<xcb_get_input_focus_reply>(toolkit, xcb_get_input_focus(toolkit));
}

CapturedImage capturedImage(const QImage& native, PixelSize size, std::shared_ptr<FrozenPicture> frozen) {
    const bool reduced = size != PixelSize{native.width(), native.height()};
    return {reduced ? AreaScaler::scaled(native, size) : native, native, std::move(frozen)};
}

/// The reply's own bytes as a picture.
QImage wrapped(XcbOwned<xcb_get_image_reply_t> reply, PixelSize size) {
    const auto* data = xcb_get_image_data(reply.get());
    return QImage(data, size.width, size.height, static_cast<qsizetype>(size.width) * 4, QImage::Format_RGB32,
                  std::free, reply.release());
}

} // namespace

X11DisplayFilter::X11DisplayFilter(std::shared_ptr<X11Connection> server, X11Monitor display,
                                   const std::optional<OwnWindows>& own)
    : connection(std::move(server)),
      monitor(display),
      veil(own ? own->veil : nullptr),
      windows(connection, own ? std::optional(own->client) : std::nullopt),
      composer(connection) {}

Result<X11DisplayFilter::Segment> X11DisplayFilter::lendSegment() {
    const auto bytes =
        static_cast<std::size_t>(monitor.rect.width()) * static_cast<std::size_t>(monitor.rect.height()) * 4;
    Segment segment = segments.lend([&] { return SharedSegment::create(connection, bytes); });
    if (!segment)
        return tl::unexpected(windowSystemError(connection->isAlive() ? WindowSystemFault::noMemory
                                                                      : WindowSystemFault::connectionLost));
    return segment;
}

xcb_shm_get_image_cookie_t X11DisplayFilter::requestPixels(xcb_drawable_t source, QPoint origin,
                                                           const SharedSegment& segment) const {
    return xcb_shm_get_image(connection->get(), source, xcbCoordinate(origin.x()), xcbCoordinate(origin.y()),
                             xcbLength(monitor.rect.width()), xcbLength(monitor.rect.height()), allPlanes,
                             XCB_IMAGE_FORMAT_Z_PIXMAP, segment.id(), 0);
}

Result<void> X11DisplayFilter::receivePixels(xcb_shm_get_image_cookie_t cookie) const {
    const auto reply = xcbResult<xcb_shm_get_image_reply>(connection->get(), cookie);
    if (!reply)
        return tl::unexpected(reply.error());
    return {};
}

Result<void> X11DisplayFilter::warm() {
    if (!connection->extensions().sharedMemory)
        return {};
    const Result<Segment> segment = lendSegment();
    if (!segment)
        return tl::unexpected(segment.error());
    return receivePixels(requestPixels(connection->root(), monitor.rect.topLeft(), **segment));
}

Result<CapturedImage> X11DisplayFilter::capture(PixelSize size) {
    if (!connection->extensions().sharedMemory)
        return captureOnce(connection, monitor, size);
    connection->discardEvents();
    const Result<Segment> segment = lendSegment();
    if (!segment)
        return tl::unexpected(segment.error());
    if (veil)
        awaitToolkit();

    xcb_connection_t* xcb = connection->get();
    const auto monitorsCookie = requestMonitors(xcb);
    const auto windowsRequest = windows.request();
    const auto pixelsCookie = requestPixels(connection->root(), monitor.rect.topLeft(), **segment);
    const auto monitors = receiveMonitors(xcb, monitorsCookie);
    const TopLevelWindows::Glance glance = windows.glance(windowsRequest, monitor.rect);
    const Result<void> pixels = receivePixels(pixelsCookie);
    if (!monitors)
        return tl::unexpected(monitors.error());
    if (std::ranges::find(*monitors, monitor) == monitors->end())
        return tl::unexpected(windowSystemError(WindowSystemFault::displayMissing));
    if (!pixels)
        return tl::unexpected(pixels.error());

    if (glance.anyOwn && connection->extensions().render && connection->extensions().composite)
        if (const Result<void> composed = leaveOutOwnWindows(glance.composited, **segment); !composed)
            return tl::unexpected(composed.error());
    const QImage native = SharedSegment::image(*segment, monitor.rect.width(), monitor.rect.height());
    return capturedImage(native, size, frozen(*segment, glance));
}

std::shared_ptr<FrozenPicture> X11DisplayFilter::frozen(const Segment& segment,
                                                        TopLevelWindows::Glance glance) const {
    if (!connection->extensions().render)
        return nullptr;
    // A compositor may keep the screen's picture elsewhere than in the root.
    if (glance.anyOwn || glance.composited)
        return std::make_shared<X11FrozenPicture>(connection, sizeOf(monitor.rect), segment);
    return std::make_shared<X11FrozenPicture>(connection, sizeOf(monitor.rect));
}

Result<void> X11DisplayFilter::leaveOutOwnWindows(bool composited, const SharedSegment& segment) const {
    ServerPixmap pixmap(connection, sizeOf(monitor.rect));
    const WindowComposer::Scene scene{monitor.rect, windows.visible(monitor.rect), composited};
    if (composited) {
        std::vector<TopLevelWindow> ours = scene.windows;
        std::erase_if(ours, [](const TopLevelWindow& window) { return !window.own; });
        if (const auto lowered = veil->lower(ours, windows.ownClients())) {
            pixmap.copyFromRoot(monitor.rect.topLeft());
            return receivePixels(requestPixels(pixmap.id(), {0, 0}, segment));
        }
    }
    composer.compose(pixmap, scene);
    return receivePixels(requestPixels(pixmap.id(), {0, 0}, segment));
}

Result<CapturedImage> X11DisplayFilter::captureOnce(const std::shared_ptr<X11Connection>& connection,
                                                    const X11Monitor& monitor, PixelSize size) {
    connection->discardEvents();
    xcb_connection_t* xcb = connection->get();
    std::shared_ptr<ServerPixmap> pixmap;
    xcb_drawable_t source = connection->root();
    QPoint origin = monitor.rect.topLeft();
    if (connection->extensions().render) {
        pixmap = std::make_shared<ServerPixmap>(connection, sizeOf(monitor.rect));
        pixmap->copyFromRoot(origin);
        source = pixmap->id();
        origin = {};
    }
    auto reply = xcbResult<xcb_get_image_reply>(
        xcb, xcb_get_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, source, xcbCoordinate(origin.x()),
                           xcbCoordinate(origin.y()), xcbLength(monitor.rect.width()),
                           xcbLength(monitor.rect.height()), allPlanes));
    if (!reply)
        return tl::unexpected(reply.error());
    const auto expected = static_cast<std::int64_t>(monitor.rect.width()) * monitor.rect.height() * 4;
    if (xcb_get_image_data_length(reply->get()) < expected)
        return tl::unexpected(windowSystemError(WindowSystemFault::shortReply));
    std::shared_ptr<FrozenPicture> frozen;
    if (pixmap)
        frozen = std::make_shared<X11FrozenPicture>(connection, pixmap);
    return capturedImage(wrapped(std::move(*reply), sizeOf(monitor.rect)), size, std::move(frozen));
}
