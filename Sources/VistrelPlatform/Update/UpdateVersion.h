#pragma once

#include <QString>

#include <compare>
#include <cstdint>
#include <optional>
#include <vector>

/// A version as numbers, compared one by one; numbers that are missing count as 0. A value.
class UpdateVersion {
public:
    /// Nothing unless the text is one to eight decimal numbers joined by points.
    static std::optional<UpdateVersion> parse(const QString& text);

    /// As it was written.
    const QString& text() const { return written; }

    friend std::strong_ordering operator<=>(const UpdateVersion& a, const UpdateVersion& b);
    friend bool operator==(const UpdateVersion& a, const UpdateVersion& b) { return std::is_eq(a <=> b); }

private:
    QString written;
    std::vector<std::uint32_t> numbers;
};
