#include "VistrelPlatform/KeyboardLayout.h"

#include <algorithm>
#include <array>

namespace {

struct Row {
    KeyCode key;
    char16_t plain;
    char16_t shifted;
};

constexpr std::array rows = {
    Row{0, u'a', u'A'},  Row{11, u'b', u'B'},  Row{8, u'c', u'C'},  Row{2, u'd', u'D'},   Row{14, u'e', u'E'},
    Row{3, u'f', u'F'},  Row{5, u'g', u'G'},   Row{4, u'h', u'H'},  Row{34, u'i', u'I'},  Row{38, u'j', u'J'},
    Row{40, u'k', u'K'}, Row{37, u'l', u'L'},  Row{46, u'm', u'M'}, Row{45, u'n', u'N'},  Row{31, u'o', u'O'},
    Row{35, u'p', u'P'}, Row{12, u'q', u'Q'},  Row{15, u'r', u'R'}, Row{1, u's', u'S'},   Row{17, u't', u'T'},
    Row{32, u'u', u'U'}, Row{9, u'v', u'V'},   Row{13, u'w', u'W'}, Row{7, u'x', u'X'},   Row{16, u'y', u'Y'},
    Row{6, u'z', u'Z'},  Row{18, u'1', u'!'},  Row{19, u'2', u'@'}, Row{20, u'3', u'#'},  Row{21, u'4', u'$'},
    Row{23, u'5', u'%'}, Row{22, u'6', u'^'},  Row{26, u'7', u'&'}, Row{28, u'8', u'*'},  Row{25, u'9', u'('},
    Row{29, u'0', u')'}, Row{27, u'-', u'_'},  Row{24, u'=', u'+'}, Row{33, u'[', u'{'},  Row{30, u']', u'}'},
    Row{41, u';', u':'}, Row{39, u'\'', u'"'}, Row{50, u'`', u'~'}, Row{42, u'\\', u'|'}, Row{43, u',', u'<'},
    Row{47, u'.', u'>'}, Row{44, u'/', u'?'},  Row{49, u' ', u' '}};

} // namespace

std::optional<TypingKey> USKeyboardLayout::keyTyping(char32_t character) const {
    for (const Row& row : rows) {
        if (character == row.plain || character == row.shifted)
            return TypingKey{row.key, character != row.plain};
    }
    return std::nullopt;
}

QString USKeyboardLayout::textOf(KeyCode key) const {
    const auto* row = std::ranges::find(rows, key, &Row::key);
    return row == rows.end() ? QString() : QString(QChar(row->plain));
}
