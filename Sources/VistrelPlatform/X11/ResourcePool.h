#pragma once

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

/// Keeps what is costly to make for the next time: whatever `lend` hands out comes back when its last
/// owner lets go, on any thread, and is never lent twice at once. One unused piece is kept.
template<class T>
class ResourcePool {
public:
    /// `make` returns `std::unique_ptr<T>`, null on failure; then so is the result.
    template<class Make>
    std::shared_ptr<T> lend(Make make) {
        std::unique_ptr<T> piece;
        {
            const std::lock_guard lock(shelf->mutex);
            if (!shelf->unused.empty()) {
                piece = std::move(shelf->unused.back());
                shelf->unused.pop_back();
            }
        }
        if (!piece)
            piece = make();
        if (!piece)
            return nullptr;
        return std::shared_ptr<T>(piece.release(), Return{shelf});
    }

private:
    struct Shelf {
        std::mutex mutex;
        std::vector<std::unique_ptr<T>> unused;
    };
    struct Return {
        std::weak_ptr<Shelf> home;

        void operator()(T* raw) const {
            std::unique_ptr<T> piece(raw);
            const auto place = home.lock();
            if (!place)
                return;
            piece->rest();
            const std::lock_guard lock(place->mutex);
            if (place->unused.empty())
                place->unused.push_back(std::move(piece));
        }
    };

    std::shared_ptr<Shelf> shelf = std::make_shared<Shelf>();
};
