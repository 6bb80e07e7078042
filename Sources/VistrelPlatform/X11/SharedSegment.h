#pragma once

#include "VistrelPlatform/X11/X11Connection.h"

#include <QImage>

#include <xcb/shm.h>

#include <cstddef>
#include <memory>

/// Memory that the X server writes pictures into and this program reads in place. Any thread.
class SharedSegment {
public:
    /// Null when the memory or the server's attachment cannot be had.
    static std::unique_ptr<SharedSegment> create(std::shared_ptr<X11Connection> connection,
                                                 std::size_t bytes);
    ~SharedSegment();
    SharedSegment(const SharedSegment&) = delete;
    SharedSegment& operator=(const SharedSegment&) = delete;

    xcb_shm_seg_t id() const { return segment; }
    /// Gives our view of the pages back to the system; their contents stay.
    void rest();
    /// The pixels without a copy. The segment lives as long as any copy of the image.
    static QImage image(std::shared_ptr<SharedSegment> segment, int width, int height);

private:
    SharedSegment(std::shared_ptr<X11Connection> server, void* mapping, std::size_t length)
        : connection(std::move(server)), address(mapping), bytes(length) {}

    std::shared_ptr<X11Connection> connection;
    void* address;
    std::size_t bytes;
    xcb_shm_seg_t segment = XCB_NONE;
};
