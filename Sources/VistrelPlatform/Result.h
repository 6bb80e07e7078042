#pragma once

#include <QString>
#include <QtGlobal>

#include <tl/expected.hpp>

/// A failure as a value: where it came from, its number there, and the text a user may read.
struct Error {
    QString domain;
    int code = 0;
    QString description;

    friend bool operator==(const Error&, const Error&) = default;
};

/// Domains shared by several rooms. A room with errors of its own names its domain beside them.
namespace ErrorDomain {
/// Files, folders and encodings of the operating system; the code is errno or QFileDevice's error.
inline const QString system = QStringLiteral("system");
/// The window system while pictures are taken; the code is the X error or the failed step's number.
inline const QString windowSystem = QStringLiteral("windowSystem");
/// Work that was asked to stop. Never shown.
inline const QString cancelled = QStringLiteral("cancelled");
} // namespace ErrorDomain

template<class T>
using Result = tl::expected<T, Error>;

inline Error cancelledError() {
    return {ErrorDomain::cancelled, 0, QStringLiteral("The operation was cancelled.")};
}
inline bool isCancelled(const Error& error) {
    return error.domain == ErrorDomain::cancelled;
}

/// Stops the program: a programming fault, never a condition that input can cause.
#define VISTREL_PRECONDITION(condition, text)                                                                \
    do {                                                                                                     \
        if (!(condition))                                                                                    \
            qFatal("%s: %s", Q_FUNC_INFO, text);                                                             \
    } while (false)
