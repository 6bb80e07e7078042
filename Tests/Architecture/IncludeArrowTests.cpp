#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
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

/// The innermost folder that is a room decides; most rooms are called like their folders.
std::string roomOf(const fs::path& file, const Arrows& arrows) {
    for (fs::path folder = file.parent_path(); !folder.empty(); folder = folder.parent_path()) {
        std::string name = folder.filename().string();
        std::ranges::transform(name, name.begin(), [](unsigned char c) { return char(std::tolower(c)); });
        if (name.starts_with("vistrel"))
            name = name.substr(std::string("vistrel").size());
        if (name == "settings")
            name = "preferences";
        if (arrows.contains(name))
            return name;
    }
    return {};
}

struct Include {
    fs::path file;
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
                found.push_back({fs::relative(path, root / "Sources"), match[1]});
    }
    return found;
}

} // namespace

TEST(IncludeArrows, RunOnlyWhereThePageAllows) {
    const Arrows arrows = documentedArrows();
    std::set<std::string> rooms;
    for (const auto& [file, target] : includes()) {
        const std::string room = *rooms.insert(roomOf(file, arrows)).first;
        const bool isOurs =
            fs::exists(root / "Sources" / target) || fs::exists(root / "Sources/Vistrel" / target);
        const std::string other = isOurs ? roomOf(target, arrows) : "";
        EXPECT_TRUE(room.empty() || other.empty() || room == other || arrows.at(room).contains(other))
            << file << " includes " << target << ": " << room << " may not use " << other;
    }
    rooms.erase("");
    EXPECT_EQ(rooms.size(), arrows.size()) << "a room that is no folder";
}

TEST(IncludeArrows, KeepTheDesktopsWordsInThePlatform) {
    const std::regex foreign(R"(^(xcb/|X11/|gio/|glib|QDBus|QtDBus))");
    const std::regex toolkit("^(Qt?[A-Z]|tl/)");
    for (const auto& [file, target] : includes()) {
        const std::string folder = file.begin()->string();
        EXPECT_FALSE(folder != "VistrelPlatform" && std::regex_search(target, foreign))
            << file << " includes " << target;
        EXPECT_FALSE(folder == "VistrelCore" && std::regex_search(target, toolkit))
            << file << " includes " << target;
    }
}
