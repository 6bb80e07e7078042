#include "VistrelPlatform/System/PixelBuffer.h"

#include <sys/mman.h>

std::unique_ptr<PixelBuffer> PixelBuffer::biPlanar(std::int64_t width, std::int64_t height) {
    constexpr std::int64_t longestEdge = 1 << 20;
    if (width < 1 || height < 1 || width > longestEdge || height > longestEdge)
        return nullptr;
    const std::size_t rowBytes = (static_cast<std::size_t>(width) + rowAlignment - 1) & ~(rowAlignment - 1);
    const std::int64_t chromaRows = (height + 1) / 2;
    const std::size_t size = rowBytes * static_cast<std::size_t>(height + chromaRows);
    // Its own mapping rather than the heap, so that letting it go gives the memory back at once.
    void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        return nullptr;
    auto* luma = static_cast<std::uint8_t*>(memory);
    std::uint8_t* chroma = luma + rowBytes * static_cast<std::size_t>(height);
    auto buffer = std::make_unique<PixelBuffer>(
        width, height, std::vector<Plane>{{luma, rowBytes, height}, {chroma, rowBytes, chromaRows}});
    buffer->mapping = memory;
    buffer->mappedBytes = size;
    return buffer;
}

PixelBuffer::PixelBuffer(std::int64_t pixelWidth, std::int64_t pixelHeight, std::vector<Plane> borrowedPlanes)
    : pixels{pixelWidth, pixelHeight}, planeList(std::move(borrowedPlanes)) {}

PixelBuffer::~PixelBuffer() {
    if (mapping)
        munmap(mapping, mappedBytes);
}
