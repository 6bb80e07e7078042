#pragma once

#include <QByteArray>
#include <QIODevice>

/// A document on its way, which can be read once: left to itself the network library sends a body again, up
/// to four times, when the connection breaks. Main thread.
class UploadBody : public QIODevice {
public:
    explicit UploadBody(const QByteArray& document) : rest(document) { open(QIODevice::ReadOnly); }

    bool isSequential() const override { return true; }
    bool reset() override { return false; }
    qint64 bytesAvailable() const override { return rest.size() + QIODevice::bytesAvailable(); }

protected:
    qint64 readData(char* data, qint64 size) override {
        if (rest.isEmpty())
            return -1;
        const qint64 taken = std::min<qint64>(size, rest.size());
        std::copy_n(rest.constData(), taken, data);
        rest.remove(0, taken);
        return taken;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray rest;
};
