#pragma once

#include "VistrelPlatform/System/PixelBuffer.h"

#include <memory>

/// Hands out 4:2:0 buffers of one size and takes them back when their last user lets go. Any thread.
/// Buffers may outlive the pool; what lies in it unused goes with it.
class PixelBufferPool {
public:
    /// Null when there can be no buffer of this size.
    static std::unique_ptr<PixelBufferPool> create(std::int64_t width, std::int64_t height);
    ~PixelBufferPool();
    PixelBufferPool(const PixelBufferPool&) = delete;
    PixelBufferPool& operator=(const PixelBufferPool&) = delete;

    /// A buffer with the contents of its last use and no attachments; null without memory.
    std::shared_ptr<PixelBuffer> take();

private:
    struct Shelf;
    explicit PixelBufferPool(std::shared_ptr<Shelf> returnedBuffers);

    std::shared_ptr<Shelf> shelf;
};
