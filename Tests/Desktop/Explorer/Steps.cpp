#include "Desktop/Explorer/Steps.h"

#include <QKeySequence>

#include <algorithm>

namespace {

/// Puts steps together to what hands do, and now and then to what they should not.
class Hand {
public:
    explicit Hand(unsigned seed) : random(seed) {}

    void phrase() {
        const int kind = pick(random, 100);
        if (kind < 26)
            drag();
        else if (kind < 40)
            click(Step::control);
        else if (kind < 46)
            click(anyPlace());
        else if (kind < 51)
            doubleClick();
        else if (kind < 66)
            key();
        else if (kind < 74)
            chord();
        else if (kind < 80)
            typeText();
        else if (kind < 84)
            typeSize();
        else if (kind < 86)
            add(Step::requestAgain);
        else if (kind < 88)
            add(Step::cover);
        else if (kind < 90)
            add(Step::stealFocus);
        else
            anything();
    }

    std::vector<Step> steps;

private:
    double fraction() { return pick(random, 1000) / 1000.0; }
    void add(Step::Act act, int what = 0) {
        steps.push_back({.act = act, .what = what, .x = fraction(), .y = fraction()});
    }
    Step::Place anyPlace() {
        constexpr Step::Place places[] = {Step::anywhere, Step::inside, Step::inside,       Step::inside,
                                          Step::outside,  Step::handle, Step::layer,        Step::layerHandle,
                                          Step::control,  Step::edge,   Step::otherDisplay, Step::text};
        return places[pick(random, std::size(places))];
    }
    int anyKey() { return pick(random, int(handKeys().size())); }

    void drag() {
        constexpr Step::Place starts[] = {Step::inside,  Step::inside, Step::inside, Step::inside,
                                          Step::handle,  Step::layer,  Step::layer,  Step::layerHandle,
                                          Step::outside, Step::control};
        add(Step::move, starts[pick(random, std::size(starts))]);
        add(Step::press, 1);
        for (int left = 1 + pick(random, 4); left > 0; --left)
            add(Step::move, pick(random, 3) ? Step::anywhere : anyPlace());
        if (pick(random, 12))
            add(Step::release, 1);
    }
    void click(Step::Place place) {
        add(Step::move, place);
        add(Step::press, 1);
        add(Step::release, 1);
    }
    void doubleClick() {
        constexpr Step::Place places[] = {Step::layer, Step::text, Step::inside, Step::control,
                                          Step::anywhere};
        add(Step::move, places[pick(random, std::size(places))]);
        add(Step::doublePress);
        add(Step::release, 1);
    }
    void tap(int key) {
        add(Step::keyDown, key);
        add(Step::keyUp, key);
    }
    void key() {
        constexpr KeyCode tools[] = {9, 35, 0, 15, 4, 37, 14, 11, 7, 17};
        tap(pick(random, 2) ? handKey(tools[pick(random, std::size(tools))]) : anyKey());
    }
    void chord() {
        constexpr KeyCode modifiers[] = {59, 56, 55};
        constexpr KeyCode commands[] = {6, 6, 6, 0, 8, 1, 9, 7, 24, 123, 126, 36};
        std::vector<int> held;
        for (const KeyCode modifier : modifiers)
            if (pick(random, 2))
                held.push_back(handKey(modifier));
        held.push_back(handKey(commands[pick(random, std::size(commands))]));
        for (const int down : held)
            add(Step::keyDown, down);
        while (!held.empty()) {
            const auto up = held.begin() + pick(random, int(held.size()));
            add(Step::keyUp, *up);
            held.erase(up);
        }
    }
    void typeText() {
        tap(handKey(17));
        click(Step::inside);
        letters();
        if (pick(random, 2))
            click(anyPlace());
    }
    void letters() {
        for (int left = pick(random, 6); left > 0; --left)
            tap(anyKey());
    }
    void typeSize() {
        steps.push_back({.act = Step::move, .what = Step::control, .x = 0.999, .y = 0.5});
        add(Step::press, 1);
        add(Step::release, 1);
        letters();
        if (pick(random, 2))
            tap(handKey(Key::returnKey));
    }
    void anything() {
        const int button = 1 + pick(random, 3);
        switch (pick(random, 6)) {
        case 0:
            return add(Step::move, anyPlace());
        case 1:
            return add(Step::press, button);
        case 2:
            return add(Step::release, button);
        case 3:
            return add(Step::keyDown, anyKey());
        case 4:
            return add(Step::keyUp, anyKey());
        default:
            return add(Step::wheel, 4 + pick(random, 4));
        }
    }

    std::mt19937 random;
};

} // namespace

const std::vector<HandKey>& handKeys() {
    static const std::vector<HandKey> keys = {
        {0, Qt::Key_A, u'a', u'A'},
        {11, Qt::Key_B, u'b', u'B'},
        {8, Qt::Key_C, u'c', u'C'},
        {14, Qt::Key_E, u'e', u'E'},
        {4, Qt::Key_H, u'h', u'H'},
        {37, Qt::Key_L, u'l', u'L'},
        {35, Qt::Key_P, u'p', u'P'},
        {15, Qt::Key_R, u'r', u'R'},
        {1, Qt::Key_S, u's', u'S'},
        {17, Qt::Key_T, u't', u'T'},
        {9, Qt::Key_V, u'v', u'V'},
        {7, Qt::Key_X, u'x', u'X'},
        {6, Qt::Key_Z, u'z', u'Z'},
        {18, Qt::Key_1, u'1', u'!'},
        {23, Qt::Key_5, u'5', u'%'},
        {24, Qt::Key_Equal, u'=', u'+'},
        {27, Qt::Key_Minus, u'-', u'_'},
        {49, Qt::Key_Space, u' ', u' '},
        {Key::returnKey, Qt::Key_Return, u'\r', u'\r'},
        {Key::deleteKey, Qt::Key_Backspace, u'\b', u'\b'},
        {Key::forwardDelete, Qt::Key_Delete, u'\x7f', u'\x7f'},
        {Key::leftArrow, Qt::Key_Left, 0, 0},
        {Key::rightArrow, Qt::Key_Right, 0, 0},
        {Key::upArrow, Qt::Key_Up, 0, 0},
        {Key::downArrow, Qt::Key_Down, 0, 0},
        {Key::escape, Qt::Key_Escape, u'\x1b', u'\x1b'},
        {59, Qt::Key_Control, 0, 0, Modifier::control},
        {56, Qt::Key_Shift, 0, 0, Modifier::shift},
        {55, Qt::Key_Super_L, 0, 0, Modifier::command},
    };
    return keys;
}

int handKey(KeyCode code) {
    const auto& keys = handKeys();
    return int(std::ranges::find(keys, code, &HandKey::code) - keys.begin());
}

QString Step::describe() const {
    static constexpr const char* acts[] = {"move",     "press",  "release",      "doublePress", "wheel",
                                           "key down", "key up", "requestAgain", "stealFocus",  "cover"};
    static constexpr const char* places[] = {"anywhere",    "inside",  "outside", "handle",       "layer",
                                             "layerHandle", "control", "edge",    "otherDisplay", "text"};
    QString detail;
    if (act == move)
        detail = QString::fromLatin1(places[what]);
    else if (act == keyDown || act == keyUp)
        detail = QKeySequence(handKeys()[std::size_t(what)].qtKey).toString();
    else
        detail = QString::number(what);
    return QStringLiteral("%1 %2 (%3, %4)").arg(QLatin1String(acts[act]), detail).arg(x).arg(y);
}

std::vector<Step> randomSteps(unsigned seed, int count) {
    Hand hand(seed);
    while (int(hand.steps.size()) < count)
        hand.phrase();
    hand.steps.resize(std::size_t(count));
    return std::move(hand.steps);
}
