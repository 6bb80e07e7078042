#pragma once

#include <unistd.h>

#include <utility>

/// Owns one open file descriptor; −1 stands for none.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : number(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            close();
            number = std::exchange(other.number, -1);
        }
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { close(); }

    bool isOpen() const { return number >= 0; }
    int get() const { return number; }
    void close() {
        if (number >= 0)
            ::close(std::exchange(number, -1));
    }

private:
    int number = -1;
};
