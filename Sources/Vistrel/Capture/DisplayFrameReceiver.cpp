#include "Capture/DisplayFrameReceiver.h"

#include "VistrelPlatform/System/Log.h"

#include <cstring>

namespace {

bool copyPlane(const PixelBuffer::Plane& from, const PixelBuffer::Plane& to) {
    if (!from.bytes || !to.bytes || from.rows > to.rows)
        return false;
    // Rows that are laid out alike are one piece of memory, which is copied faster than its rows.
    if (from.bytesPerRow == to.bytesPerRow) {
        std::memcpy(to.bytes, from.bytes, from.bytesPerRow * static_cast<std::size_t>(from.rows));
        return true;
    }
    const std::size_t bytes = std::min(from.bytesPerRow, to.bytesPerRow);
    for (std::int64_t y = 0; y < from.rows; ++y)
        std::memcpy(to.row(y).data(), from.row(y).data(), bytes);
    return true;
}

/// A copy of its own, so that the stream gets its few buffers back at once.
std::shared_ptr<const PixelBuffer> copied(const PixelBuffer& source, PixelBufferPool& pool) {
    const std::shared_ptr<PixelBuffer> copy = pool.take();
    if (!copy || source.planes().size() != copy->planes().size() || source.width() != copy->width() ||
        source.height() != copy->height())
        return nullptr;
    for (std::size_t i = 0; i < source.planes().size(); ++i)
        if (!copyPlane(source.planes()[i], copy->planes()[i]))
            return nullptr;
    copy->attachments = source.attachments;
    return copy;
}

} // namespace

DisplayFrameReceiver::DisplayFrameReceiver(Setup setup)
    : display(setup.displayID),
      bufferPolicy(setup.policy),
      onFailure(std::move(setup.onFailure)),
      history(BufferPolicy::history, setup.policy.maximumFrames),
      pool(PixelBufferPool::create(setup.width, setup.height)) {}

void DisplayFrameReceiver::streamDidOutput(const StreamFrame& frame, OutputType type) {
    if (type == OutputType::screen)
        receive(frame);
}

void DisplayFrameReceiver::receive(const StreamFrame& frame) {
    if (!frame.isValid || !frame.isDataReady || !frame.info ||
        frame.info->status != StreamFrame::Status::complete || !frame.info->displayTime || !frame.image)
        return;
    const CaptureTime::Instant now = CaptureTime::now();
    const CaptureTime::Instant timestamp = now + (*frame.info->displayTime - CaptureTime::hostTime());
    const std::lock_guard guard(lock);
    if (!acceptingFrames || !pool)
        return;
    if (auto copy = copied(*frame.image, *pool))
        history.append({display, timestamp, std::move(copy)}, timestamp);
}

void DisplayFrameReceiver::streamDidStop(const Error& error) {
    invalidate();
    qCCritical(vistrelLog, "Stream stopped: %s", qUtf8Printable(error.description));
    if (onFailure)
        onFailure();
}

void DisplayFrameReceiver::invalidate() {
    const std::lock_guard guard(lock);
    acceptingFrames = false;
    history.removeAll();
    pool.reset();
}

void DisplayFrameReceiver::withHistory(const std::function<void(History&)>& use) {
    const std::lock_guard guard(lock);
    use(history);
}
