// The folders of the source are layers: a file may include headers of its own folder and of those that its
// folder stands on, never of one above. Every #include of our own headers is read.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

struct Layer {
    const char* folder; ///< below src
    const char* prefix; ///< how its headers are included
    Names uses;
};

const Names kHost{ "ge", "gi", "gi/paint", "platform", "db", "dxf", "ed", "widgets" };

Names with(Names names, const Names& more)
{
    names.insert(more.begin(), more.end());
    return names;
}

// From the bottom to the top.
std::vector<Layer> layers()
{
    return {
        { "host/platform", "platform", {} },
        { "host/ge", "ge", {} },
        { "host/gi/paint", "gi/paint", { "ge", "gi", "platform", "db" } },
        { "host/gi", "gi", { "ge" } },
        { "host/db", "db", { "ge", "gi", "platform" } },
        { "host/dxf", "dxf", { "ge", "gi", "platform", "db" } },
        { "host/ed", "ed", { "ge", "gi", "gi/paint", "platform", "db", "dxf" } },
        { "host/widgets", "widgets", { "ge", "gi", "gi/paint", "platform", "db", "dxf", "ed" } },
        { "core", "core", kHost },
        { "frame", "frame", with(kHost, { "core" }) },
        { "controls", "controls", with(kHost, { "core" }) },
        { "exchange", "exchange", with(kHost, { "core", "frame", "controls" }) },
        { "statistics", "statistics", with(kHost, { "core", "frame", "controls", "exchange" }) },
        { "planting", "planting", with(kHost, { "core", "frame", "controls", "exchange", "statistics" }) },
        { "dimensions", "dimensions",
          with(kHost, { "core", "frame", "controls", "exchange", "statistics", "planting" }) },
        { "layers", "layers", with(kHost, { "core", "frame", "controls", "exchange" }) },
        { "text", "text", with(kHost, { "core", "frame", "controls" }) },
        { "host/ui", "ui", kHost },
        // The program loads the module; it does not link with it.
        { "app", "app", with(kHost, { "ui" }) },
    };
}

/// Folders that are layers of their own inside another one are left out.
std::vector<fs::path> sourcesIn(const fs::path& folder)
{
    std::vector<fs::path> files;
    if (fs::is_directory(folder))
        for (const auto& entry : fs::recursive_directory_iterator(folder))
            if (folder.filename() == "gi" && entry.path().parent_path().filename() == "paint")
                continue;
            else if (entry.path().extension() == ".h" || entry.path().extension() == ".cpp")
                files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

struct Include {
    std::string name;
    bool quoted = false;
};

std::vector<Include> includesOf(const fs::path& path)
{
    static const std::regex pattern(R"re(^\s*#\s*include\s*([<"])([^>"]+)[>"])re");
    std::vector<Include> found;
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line))
        if (std::smatch match; std::regex_search(line, match, pattern))
            found.push_back({ match[2], match[1] == "\"" });
    return found;
}

const fs::path kSource = fs::path(VERDELIS_SOURCE_DIR) / "src";

/// The layer that an include leads to; empty for system headers and headers beside the file.
std::string layerOf(const std::string& include, const std::vector<Layer>& all)
{
    for (const Layer& layer : all)
        if (include.rfind(std::string(layer.prefix) + '/', 0) == 0
            || include.rfind(std::string(layer.folder) + '/', 0) == 0)
            return layer.prefix;
    return {};
}

/// Sentences about arrows that point up.
std::vector<std::string>
arrowsUp(const Layer& layer, const std::string& file, const std::vector<Include>& includes)
{
    const std::vector<Layer> all = layers();
    std::vector<std::string> wrong;
    for (const Include& include : includes) {
        const std::string target = layerOf(include.name, all);
        // The command table names the commands of every folder.
        if (file == "frame/command_table.cpp" && include.name == target + "/commands.h")
            continue;
        if (include.name.find("..") != std::string::npos && include.quoted)
            wrong.push_back(file + " goes by way of another folder: " + include.name);
        else if (!target.empty() && target != layer.prefix && layer.uses.count(target) == 0)
            wrong.push_back(file + " includes " + include.name + ", which stands above or beside it");
    }
    return wrong;
}

} // namespace

TEST(Includes, PointDownOnly)
{
    size_t read = 0;
    for (const Layer& layer : layers())
        for (const fs::path& path : sourcesIn(kSource / layer.folder)) {
            const auto includes = includesOf(path);
            read += includes.size();
            for (const std::string& sentence :
                 arrowsUp(layer, fs::relative(path, kSource).string(), includes))
                ADD_FAILURE() << sentence;
        }
    EXPECT_GT(read, 200u) << "the sources are not where they should be";
}

TEST(Includes, SeeAnArrowThatPointsUp)
{
    const std::vector<Layer> all = layers();
    const auto named = [&](const std::string& prefix) {
        return *std::find_if(
            all.begin(), all.end(), [&](const Layer& layer) { return layer.prefix == prefix; });
    };
    EXPECT_EQ(arrowsUp(named("db"), "x", { { "dxf/group.h", true } }).size(), 1u);
    EXPECT_EQ(
        arrowsUp(named("ed"), "x", { { "host/app/program.h", true }, { "core/language.h", true } }).size(),
        1u);
    EXPECT_EQ(arrowsUp(named("frame"), "x", { { "statistics/list.h", true } }).size(), 1u);
    EXPECT_EQ(
        arrowsUp(named("frame"), "frame/command_table.cpp", { { "statistics/list.h", true } }).size(), 1u);
    EXPECT_TRUE(
        arrowsUp(named("frame"), "frame/command_table.cpp", { { "statistics/commands.h", true } }).empty());
    EXPECT_EQ(arrowsUp(named("db"), "x", { { "../dxf/group.h", true } }).size(), 1u);
    EXPECT_TRUE(arrowsUp(named("dxf"), "x", { { "db/object.h", true }, { "vector", false } }).empty());
}

// Every folder with sources must have its place in the table, or nothing would be checked in it.
TEST(Includes, EveryFolderHasItsPlace)
{
    Names known;
    for (const Layer& layer : layers())
        known.insert(layer.folder);
    for (const char* parent : { "", "host" })
        for (const auto& entry : fs::directory_iterator(kSource / parent)) {
            const std::string name = fs::relative(entry.path(), kSource).string();
            if (entry.is_directory() && name != "host")
                EXPECT_TRUE(known.count(name)) << name;
        }
}

// Geometry can be taken elsewhere: it needs the standard library alone.
TEST(Includes, GeometryUsesTheStandardLibraryOnly)
{
    for (const fs::path& path : sourcesIn(kSource / "host/ge"))
        for (const Include& include : includesOf(path)) {
            const bool own = include.name.rfind("ge/", 0) == 0;
            const bool standard = !include.quoted && include.name.find_first_of("/.") == std::string::npos
                && !(include.name[0] == 'Q' && std::isupper(include.name[1]));
            EXPECT_TRUE(own || standard) << path.filename().string() << " includes " << include.name;
        }
}
