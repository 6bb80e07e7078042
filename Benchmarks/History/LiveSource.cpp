#include "LiveSource.h"

#include "VistrelPlatform/CaptureTime.h"

#include <libyuv.h>
#include <xcb/damage.h>

std::unique_ptr<LiveSource> LiveSource::create(const QByteArray& displayName, int width, int height) {
    auto connection = std::make_shared<X11Connection>(displayName);
    auto segment = SharedSegment::create(connection, static_cast<std::size_t>(width) *
                                                         static_cast<std::size_t>(height) * 4);
    const auto* extension = xcb_get_extension_data(connection->get(), &xcb_damage_id);
    if (!segment || !extension || !extension->present)
        return nullptr;
    const XcbOwned<xcb_damage_query_version_reply_t> version(xcb_damage_query_version_reply(
        connection->get(),
        xcb_damage_query_version(connection->get(), XCB_DAMAGE_MAJOR_VERSION, XCB_DAMAGE_MINOR_VERSION),
        nullptr));
    if (!version)
        return nullptr;
    std::unique_ptr<LiveSource> source(new LiveSource(connection, std::move(segment), width, height));
    source->firstEvent = extension->first_event;
    return source;
}

LiveSource::LiveSource(std::shared_ptr<X11Connection> serverConnection, std::unique_ptr<SharedSegment> shared,
                       int width, int height)
    : connection(std::move(serverConnection)),
      segment(std::move(shared)),
      display(0, 0, width, height),
      damage(xcb_generate_id(connection->get())),
      picture(PixelBuffer::biPlanar(width, height)),
      pending(display) {
    xcb_damage_create(connection->get(), damage, connection->root(), XCB_DAMAGE_REPORT_LEVEL_BOUNDING_BOX);
    xcb_flush(connection->get());
}

LiveSource::~LiveSource() {
    xcb_damage_destroy(connection->get(), damage);
    xcb_flush(connection->get());
}

bool LiveSource::wasDamaged() {
    while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(connection->get())}) {
        if ((event->response_type & 0x7F) != firstEvent + XCB_DAMAGE_NOTIFY)
            continue;
        const auto& area = reinterpret_cast<const xcb_damage_notify_event_t&>(*event).area;
        pending |= QRect(area.x, area.y, area.width, area.height);
    }
    // Rows and columns come in pairs: two by two pixels share their colour.
    pending = pending.isEmpty() ? QRect()
                                : QRect(QPoint(pending.left() & ~1, pending.top() & ~1),
                                        QPoint(pending.right() | 1, pending.bottom() | 1)) &
                                      display;
    return !pending.isEmpty();
}

StreamFrame LiveSource::next() {
    StreamFrame frame;
    frame.info = StreamFrame::Info{StreamFrame::Status::idle, CaptureTime::hostTime()};
    lastPixels = 0;
    if (!wasDamaged())
        return frame;
    xcb_damage_subtract(connection->get(), damage, XCB_NONE, XCB_NONE);
    const QRect area = std::exchange(pending, QRect());
    const auto cookie = xcb_shm_get_image(
        connection->get(), connection->root(), static_cast<std::int16_t>(area.x()),
        static_cast<std::int16_t>(area.y()), static_cast<std::uint16_t>(area.width()),
        static_cast<std::uint16_t>(area.height()), ~0U, XCB_IMAGE_FORMAT_Z_PIXMAP, segment->id(), 0);
    if (!xcbReply<xcb_shm_get_image_reply>(connection->get(), cookie))
        return frame;
    convert(area);
    lastPixels = static_cast<std::int64_t>(area.width()) * area.height();
    frame.info->status = StreamFrame::Status::complete;
    frame.image = picture;
    return frame;
}

void LiveSource::convert(QRect area) {
    const QImage pixels = SharedSegment::image(segment, area.width(), area.height());
    const PixelBuffer::Plane& luma = picture->planes()[0];
    const PixelBuffer::Plane& chroma = picture->planes()[1];
    libyuv::ARGBToNV12(pixels.constBits(), static_cast<int>(pixels.bytesPerLine()),
                       luma.row(area.y()).data() + area.x(), static_cast<int>(luma.bytesPerRow),
                       chroma.row(area.y() / 2).data() + area.x(), static_cast<int>(chroma.bytesPerRow),
                       area.width(), area.height());
}
