#include "Desktop/Explorer/Exploration.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>

#include <gtest/gtest.h>

#include <numeric>

namespace {

QTextStream out(stdout);

using Setup = Exploration::Setup;

std::optional<QString> explore(const Setup& setup, const std::vector<Step>& all, const std::vector<int>& kept,
                               bool tells = false) {
    std::vector<Step> steps;
    for (const int index : kept)
        steps.push_back(all[std::size_t(index)]);
    Exploration exploration(setup);
    exploration.tells = tells;
    return exploration.run(steps);
}

/// The kind of a disagreement, without its numbers.
QString kind(const std::optional<QString>& what) {
    return what ? what->section(u' ', 3, 6) : QString();
}

/// Leaves out ever smaller pieces for as long as what is left still disagrees in the same way.
std::vector<int> shrunk(const Setup& setup, const std::vector<Step>& all, std::vector<int> kept, int tries,
                        const QString& wanted) {
    for (std::size_t piece = std::max<std::size_t>(kept.size() / 2, 1);;
         piece = std::max<std::size_t>(piece / 2, 1)) {
        bool smaller = false;
        for (std::size_t from = 0; from < kept.size() && tries > 0;) {
            std::vector<int> rest = kept;
            const auto first = rest.begin() + std::ptrdiff_t(from);
            rest.erase(first, first + std::ptrdiff_t(std::min(piece, rest.size() - from)));
            --tries;
            if (kind(explore(setup, all, rest)) == wanted) {
                kept = rest;
                smaller = true;
            } else {
                from += piece;
            }
        }
        if (tries <= 0 || (piece == 1 && !smaller))
            return kept;
    }
}

struct Options {
    unsigned seed = 1;
    int runs = 1;
    int steps = 60;
    int minutes = 0;
    int shrinkTries = 60;
    std::vector<int> only;
    std::optional<int> displays;
    std::optional<double> scale;
    std::optional<bool> windowManager;
    bool tells = false;

    Setup setupFor(unsigned of) const {
        Setup setup = Setup::of(of);
        if (displays)
            setup.scales.resize(std::size_t(*displays), setup.scales.front());
        if (scale)
            std::ranges::fill(setup.scales, *scale);
        if (windowManager)
            setup.windowManager = *windowManager;
        return setup;
    }
};

Options parse(const QStringList& arguments) {
    QCommandLineParser parser;
    const auto option = [&](const char* name, const char* what, const char* value) {
        parser.addOption({QLatin1String(name), QLatin1String(what), QLatin1String(value)});
    };
    option("seed", "The first seed.", "number");
    option("runs", "So many seeds, one after the other.", "number");
    option("minutes", "Goes on for so long instead.", "number");
    option("steps", "Steps per seed.", "number");
    option("only", "Of these, only the ones with these numbers, parted by commas.", "numbers");
    option("displays", "1 or 2; otherwise the seed decides.", "number");
    option("scale", "Device pixels per point; otherwise the seed decides.", "number");
    option("window-manager", "yes or no; otherwise the seed decides.", "answer");
    option("shrink", "How often a failing sequence is tried with steps left out.", "number");
    parser.addOption({QStringLiteral("tell"), QStringLiteral("Says what every step leads to.")});
    parser.addHelpOption();
    parser.process(arguments);
    const auto number = [&](const char* name, int otherwise) {
        return parser.isSet(QLatin1String(name)) ? parser.value(QLatin1String(name)).toInt() : otherwise;
    };
    Options options;
    options.seed = unsigned(number("seed", 1));
    options.runs = number("runs", 1);
    options.steps = number("steps", 60);
    options.minutes = number("minutes", 0);
    options.shrinkTries = number("shrink", 60);
    for (const QString& index : parser.value(QStringLiteral("only")).split(u',', Qt::SkipEmptyParts))
        options.only.push_back(index.toInt() - 1);
    if (parser.isSet(QStringLiteral("displays")))
        options.displays = number("displays", 1);
    if (parser.isSet(QStringLiteral("scale")))
        options.scale = parser.value(QStringLiteral("scale")).toDouble();
    if (parser.isSet(QStringLiteral("window-manager")))
        options.windowManager = parser.value(QStringLiteral("window-manager")) == u"yes";
    options.tells = parser.isSet(QStringLiteral("tell"));
    return options;
}

void report(const Options& options, unsigned seed, const std::vector<Step>& steps, std::vector<int> kept,
            const QString& what) {
    const Setup setup = options.setupFor(seed);
    out << "seed " << seed << " FAILED " << what << "\n" << Qt::flush;
    kept = shrunk(setup, steps, kept, options.shrinkTries, kind(what));
    const auto last = explore(setup, steps, kept);
    QStringList numbers;
    for (const int index : kept)
        numbers << QString::number(index + 1);
    out << "again with: --seed " << seed << " --steps " << options.steps << " --only " << numbers.join(u',')
        << "\n  " << setup.text() << "\n  " << last.value_or(QStringLiteral("(did not fail again)")) << "\n";
    for (const int index : kept)
        out << "  " << index + 1 << ' ' << steps[std::size_t(index)].describe() << "\n";
    out << Qt::flush;
}

} // namespace

/// Takes random steps in the real program and holds what it does against its rules.
int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const Options options = parse(QApplication::arguments());
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(options.minutes);
    int failures = 0;
    for (int run = 0; options.minutes ? std::chrono::steady_clock::now() < end : run < options.runs; ++run) {
        const unsigned seed = options.seed + unsigned(run);
        const Setup setup = options.setupFor(seed);
        const std::vector<Step> steps = randomSteps(seed, options.steps);
        std::vector<int> kept = options.only;
        if (kept.empty()) {
            kept.resize(steps.size());
            std::iota(kept.begin(), kept.end(), 0);
        }
        out << "seed " << seed << ", " << kept.size() << " steps, " << setup.text() << "\n" << Qt::flush;
        if (const auto what = explore(setup, steps, kept, options.tells)) {
            ++failures;
            report(options, seed, steps, kept, *what);
        }
    }
    out << (failures ? "disagreements: " : "agreed, disagreements: ") << failures << "\n" << Qt::flush;
    return failures ? 1 : 0;
}
