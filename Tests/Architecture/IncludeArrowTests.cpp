#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace fs = std::filesystem;

namespace {

using Arrows = std::map<std::string, std::set<std::string>>;

const fs::path root = VISTREL_SOURCE_DIR;

/// The most specific folder decides; listed from specific to general.
const std::pair<const char*, const char*> roomOfFolder[] = {
    {"VistrelCore/", "core"},
    {"VistrelPlatform/System/", "system"},
    {"VistrelPlatform/Freedesktop/", "freedesktop"},
    {"VistrelPlatform/Gio/", "gio"},
    {"VistrelPlatform/X11/", "x11"},
    {"VistrelPlatform/Network/", "network"},
    {"VistrelPlatform/Update/", "update"},
    {"VistrelPlatform/", "platform"},
    {"Diagnostics/", "diagnostics"},
    {"Settings/Windows/", "windows"},
    {"Settings/", "preferences"},
    {"Annotations/", "annotations"},
    {"Editor/", "editor"},
    {"Overlay/", "overlay"},
    {"Output/", "output"},
    {"Shortcuts/", "shortcuts"},
    {"Capture/", "capture"},
    {"Reports/", "reports"},
    {"Updates/", "updates"},
    {"App/", "app"},
};

std::string roomOf(const std::string& include) {
    for (const auto& [folder, room] : roomOfFolder)
        if (include.starts_with(folder))
            return room;
    return {};
}

/// The block after the marker in ARCHITECTURE.md: "room: allowed allowed".
Arrows documentedArrows() {
    std::ifstream page(root / "ARCHITECTURE.md");
    Arrows arrows;
    std::string line;
    while (std::getline(page, line) && !line.starts_with("<!-- arrows"))
        ;
    std::getline(page, line); // the fence
    while (std::getline(page, line) && !line.starts_with("```")) {
        const auto colon = line.find(':');
        std::istringstream allowed(line.substr(colon + 1));
        auto& targets = arrows[line.substr(0, colon)];
        for (std::string room; allowed >> room;)
            targets.insert(room);
    }
    return arrows;
}

std::string roomOfFile(const fs::path& file) {
    std::string path = fs::relative(file, root / "Sources").generic_string();
    if (path.starts_with("Vistrel/"))
        path = path.substr(std::string("Vistrel/").size());
    return roomOf(path);
}

struct Include {
    std::string file;
    std::string room;
    std::string target;
};

std::vector<Include> includes() {
    const std::regex quoted(R"(^\s*#include\s+[<"]([^>"]+)[>"])");
    std::vector<Include> found;
    for (const auto& entry : fs::recursive_directory_iterator(root / "Sources")) {
        const fs::path& path = entry.path();
        if (path.extension() != ".h" && path.extension() != ".cpp")
            continue;
        std::ifstream file(path);
        std::smatch match;
        for (std::string line; std::getline(file, line);)
            if (std::regex_search(line, match, quoted))
                found.push_back({fs::relative(path, root).generic_string(), roomOfFile(path), match[1]});
    }
    return found;
}

} // namespace

TEST(IncludeArrows, RunOnlyWhereThePageAllows) {
    const Arrows arrows = documentedArrows();
    ASSERT_EQ(arrows.size(), std::size(roomOfFolder));
    for (const Include& include : includes()) {
        const std::string target = roomOf(include.target);
        if (include.room.empty() || target.empty() || include.room == target)
            continue;
        EXPECT_TRUE(arrows.at(include.room).contains(target))
            << include.file << " includes " << include.target << ": " << include.room << " may not use "
            << target;
    }
}

TEST(IncludeArrows, KeepTheDesktopsWordsInThePlatform) {
    const std::regex foreign(R"(^(xcb/|X11/|gio/|glib|QDBus|QtDBus))");
    const std::regex toolkit("^(Qt?[A-Z]|tl/)");
    std::size_t read = 0;
    for (const Include& include : includes()) {
        ++read;
        const bool inPlatform = include.file.starts_with("Sources/VistrelPlatform/");
        EXPECT_FALSE(!inPlatform && std::regex_search(include.target, foreign))
            << include.file << " includes " << include.target;
        EXPECT_FALSE(include.room == "core" && std::regex_search(include.target, toolkit))
            << include.file << " includes " << include.target;
    }
    EXPECT_GT(read, 100U);
}
