#include "VistrelPlatform/System/PixelBufferPool.h"

#include <mutex>

/// Where unused buffers lie; buffers in use hold on to it weakly.
struct PixelBufferPool::Shelf {
    std::mutex lock;
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::vector<std::unique_ptr<PixelBuffer>> unused;
};

std::unique_ptr<PixelBufferPool> PixelBufferPool::create(std::int64_t width, std::int64_t height) {
    auto first = PixelBuffer::biPlanar(width, height);
    if (!first)
        return nullptr;
    auto shelf = std::make_shared<Shelf>();
    shelf->width = width;
    shelf->height = height;
    shelf->unused.push_back(std::move(first));
    return std::unique_ptr<PixelBufferPool>(new PixelBufferPool(std::move(shelf)));
}

PixelBufferPool::PixelBufferPool(std::shared_ptr<Shelf> returnedBuffers)
    : shelf(std::move(returnedBuffers)) {}

PixelBufferPool::~PixelBufferPool() = default;

std::shared_ptr<PixelBuffer> PixelBufferPool::take() {
    std::unique_ptr<PixelBuffer> buffer;
    {
        const std::lock_guard guard(shelf->lock);
        if (!shelf->unused.empty()) {
            buffer = std::move(shelf->unused.back());
            shelf->unused.pop_back();
        }
    }
    if (!buffer)
        buffer = PixelBuffer::biPlanar(shelf->width, shelf->height);
    if (!buffer)
        return nullptr;
    const auto putBack = [home = std::weak_ptr(shelf)](PixelBuffer* returned) {
        std::unique_ptr<PixelBuffer> owned(returned);
        if (const auto found = home.lock()) {
            owned->attachments.clear();
            const std::lock_guard guard(found->lock);
            found->unused.push_back(std::move(owned));
        }
    };
    return {buffer.release(), putBack};
}
