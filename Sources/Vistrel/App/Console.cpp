#include "App/Console.h"

#include <cstdio>

namespace {

void writeTo(std::FILE* stream, const QByteArray& bytes) {
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
}

} // namespace

void Console::printLine(const QString& line) const {
    output(line.toUtf8() + '\n');
}

void Console::printErrorLine(const QString& line) const {
    error(line.toUtf8() + '\n');
}

Console Console::standard() {
    return {[](const QByteArray& bytes) { writeTo(stdout, bytes); },
            [](const QByteArray& bytes) { writeTo(stderr, bytes); }};
}
