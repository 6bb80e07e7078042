#include "Desktop/Explorer/Exploration.h"

#include <QFile>
#include <QJsonDocument>
#include <QPainter>

#include <algorithm>

// What is seen after a step, held against the rules.

namespace {

constexpr std::chrono::seconds soon{8};
constexpr KeyCode probeKey = 12;
constexpr int probeScanCode = 24;

QRect difference(const QImage& a, const QImage& b) {
    QRect changed;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (a.pixel(x, y) != b.pixel(x, y))
                changed |= QRect(x, y, 1, 1);
    return changed;
}

QString text(QRect rect) {
    return QStringLiteral("%1,%2 %3x%4").arg(rect.x()).arg(rect.y()).arg(rect.width()).arg(rect.height());
}

QString lineText(const QJsonObject& event) {
    const QString action = event[u"action"].toString();
    const QJsonObject details = event[u"details"].toObject();
    if (!details.contains(u"tool"))
        return action;
    return QStringLiteral("%1(%2,%3,%4,%5)")
        .arg(action)
        .arg(details[u"tool"].toInt(-1))
        .arg(details[u"size"].toInt(-1))
        .arg(details[u"layers"].toInt(-1))
        .arg(details[u"displayIndex"].toInt(-1));
}

} // namespace

void Exploration::check() {
    checkProgram();
    synchronize();
    checkJournal();
    if (!rules.isOpen())
        return;
    const std::vector<int> stray = bystander.keys();
    expect(stray.empty(),
           QStringLiteral("a key went to the window below: %1").arg(stray.empty() ? 0 : stray.front()));
    for (std::size_t index = 0; index < rules.displayCount(); ++index)
        checkPicture(index);
}

void Exploration::checkProgram() {
    expect(vistrel.program->isRunning(), QStringLiteral("the program died: ") +
                                             QString::fromUtf8(vistrel.program->standardError().left(6000)));
}

// Three answers: an event, what it posts, and what that posts, have been handled by then.
void Exploration::synchronize() {
    if (!rules.isOpen())
        return;
    const xcb_window_t overlay = overlayOn(0);
    for (int turn = 0; overlay && turn < 3; ++turn)
        expect(bystander.answers(overlay) || !vistrel.program->isRunning(),
               QStringLiteral("the program does not answer"));
}

QStringList Exploration::newLines() {
    QFile file(vistrel.journalFolder() + QStringLiteral("/events.jsonl"));
    QStringList lines;
    if (!file.open(QFile::ReadOnly) || !file.seek(journalRead))
        return lines;
    const QByteArray content = file.readAll();
    const qsizetype whole = content.lastIndexOf('\n') + 1;
    journalRead += whole;
    for (const QByteArray& line : content.first(whole).split('\n')) {
        const QString text = lineText(QJsonDocument::fromJson(line).object());
        if (!text.isEmpty() && text != u"capturePhase" && text != u"launch" && text != u"shortcutChanged")
            lines << text;
    }
    return lines;
}

void Exploration::checkJournal() {
    waitUntil(
        [this] {
            told += newLines();
            return told.size() >= rules.journal.size() || !vistrel.program->isRunning();
        },
        soon);
    checkProgram();
    if (told == rules.journal)
        return;
    qsizetype same = 0;
    while (same < told.size() && same < rules.journal.size() && told[same] == rules.journal[same])
        ++same;
    disagree(QStringLiteral("the journal has [%1], expected [%2]")
                 .arg(told.mid(same).join(u' '), rules.journal.mid(same).join(u' ')));
}

xcb_window_t Exploration::overlayOn(std::size_t index) {
    for (const MappedWindow& window : vistrel.session.client().mappedWindows())
        if (window.overrideRedirect && window.rect == rules.display(index).rect)
            return window.id;
    return XCB_NONE;
}

std::vector<MappedWindow> Exploration::windowsAbove(xcb_window_t overlay) {
    std::vector<MappedWindow> all = vistrel.session.client().mappedWindows();
    const auto found = std::ranges::find(all, overlay, &MappedWindow::id);
    if (found == all.end())
        return {};
    const QRect covered = found->rect;
    all.erase(all.begin(), found + 1);
    std::erase_if(all, [&](const MappedWindow& window) {
        if (!window.rect.intersects(covered))
            return true;
        for (std::size_t index = 0; index < rules.displayCount(); ++index)
            if (window.rect == rules.display(index).rect)
                return true;
        return false;
    });
    return all;
}

bool Exploration::isScaled() {
    for (std::size_t index = 0; index < rules.displayCount(); ++index)
        if (rules.display(index).scale != 1)
            return true;
    return false;
}

void Exploration::checkPicture(std::size_t index) {
    RuledDisplay& on = rules.display(index);
    const QImage picture = on.picture();
    std::vector<QRect> letters;
    if (isScaled())
        letters = on.letters();
    QImage wanted;
    QImage seen;
    // A hint comes when it likes, and may outlive the place of the control under the pointer.
    if (const auto part = rules.at(rules.pointer).part;
        part == Rules::Receiver::control || part == Rules::Receiver::panel)
        hintAt = rules.pointer;
    if (hintAt != rules.pointer)
        hintAt.reset();
    const auto agree = [&] {
        wanted = picture;
        seen = vistrel.session.screenPixels(on.rect);
        std::vector<QRect> hidden;
        const PanelPlaces places = on.places();
        if (on.showsPanels())
            for (const QRectF& panel : places.panels())
                hidden.push_back(on.toRoot(panel.adjusted(-2, -2, 2, 2)));
        if (on.textView)
            hidden.push_back(on.toRoot(on.textArea().adjusted(-2, -2, 2, 2)));
        if (hintAt)
            hidden.push_back(on.toRoot(QRectF(on.toPoints(*hintAt) - QPointF(300, 50), QSizeF(600, 100))));
        for (const MappedWindow& window : windowsAbove(overlayOn(index)))
            hidden.push_back(window.rect.adjusted(-2, -2, 2, 2));
        for (QImage* image : {&wanted, &seen}) {
            QPainter painter(image);
            for (const QRect& rect : hidden)
                painter.fillRect(rect.translated(-on.rect.topLeft()), Qt::black);
            for (const QRect& rect : letters)
                painter.fillRect(rect, Qt::black);
        }
        return wanted == seen;
    };
    if (waitUntil(agree, soon))
        return;
    const QString stem = QStringLiteral("/tmp/explorer-%1").arg(vistrel.program->id());
    wanted.save(stem + QStringLiteral("-wanted.png"));
    seen.save(stem + QStringLiteral("-seen.png"));
    disagree(QStringLiteral("display %1 looks different in %2 (%3-*.png)")
                 .arg(index)
                 .arg(text(difference(wanted, seen)), stem));
}

void Exploration::checkClosed() {
    letGo();
    expect(waitUntil([this] { return overlayOn(0) == XCB_NONE; }, soon),
           QStringLiteral("an overlay stays after its capture"));
    expect(waitUntil([this] { return bystander.hasKeyboard(); }, soon),
           QStringLiteral("the keyboard was not given back"));
    const std::vector<int> stray = bystander.keys();
    expect(stray.empty(), QStringLiteral("the key that ended the capture went to the window below"));
    vistrel.session.input().key(probeKey);
    expect(waitUntil([this] { return bystander.keys() == std::vector{probeScanCode}; }, soon),
           QStringLiteral("a key does not reach the window that had the keyboard"));
    if (const auto copied = std::exchange(rules.copied, std::nullopt))
        expect(vistrel.clipboardImage() == copied->convertToFormat(QImage::Format_RGB32),
               QStringLiteral("the clipboard has another picture"));
}
