#include "VistrelPlatform/X11/SharedSegment.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

std::unique_ptr<SharedSegment> SharedSegment::create(std::shared_ptr<X11Connection> connection,
                                                     std::size_t bytes) {
    const int descriptor = memfd_create("vistrel-picture", MFD_CLOEXEC);
    if (descriptor < 0)
        return nullptr;
    void* address = MAP_FAILED;
    // Not only as long, but there: the server would otherwise wait for each page, or end where there is none.
    if (posix_fallocate(descriptor, 0, static_cast<off_t>(bytes)) == 0)
        address = mmap(nullptr, bytes, PROT_READ, MAP_SHARED, descriptor, 0);
    if (address == MAP_FAILED) {
        close(descriptor);
        return nullptr;
    }
    std::unique_ptr<SharedSegment> result(new SharedSegment(std::move(connection), address, bytes));
    xcb_connection_t* xcb = result->connection->get();
    result->segment = xcb_generate_id(xcb);
    // The connection closes the descriptor once it is sent.
    const auto cookie = xcb_shm_attach_fd_checked(xcb, result->segment, descriptor, 0);
    if (XcbOwned<xcb_generic_error_t>(xcb_request_check(xcb, cookie)) || !result->connection->isAlive()) {
        result->segment = XCB_NONE;
        return nullptr;
    }
    return result;
}

SharedSegment::~SharedSegment() {
    if (segment != XCB_NONE) {
        xcb_shm_detach(connection->get(), segment);
        xcb_flush(connection->get());
    }
    munmap(address, bytes);
}

void SharedSegment::rest() {
    madvise(address, bytes, MADV_DONTNEED);
}

QImage SharedSegment::image(std::shared_ptr<SharedSegment> segment, int width, int height) {
    auto* owner = new std::shared_ptr<SharedSegment>(std::move(segment));
    const auto* data = static_cast<const uchar*>((*owner)->address);
    return QImage(
        data, width, height, static_cast<qsizetype>(width) * 4, QImage::Format_RGB32,
        [](void* held) { delete static_cast<std::shared_ptr<SharedSegment>*>(held); }, owner);
}
