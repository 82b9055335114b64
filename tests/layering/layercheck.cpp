// SPDX-License-Identifier: GPL-3.0-or-later
// Checks that includes run one way: engine < texts, render < gui < viewer;
// tools/kel sees engine and texts and uses QtCore only (it starts in a few
// milliseconds), its drawing helper tools/kel-render sees everything but the
// viewer, kelwriter the engine; the engine uses QtCore only, render no
// widgets; no folders of one layer include each other, however long the loop.
// `--self-test QT_INCLUDE_ROOT` checks a planted tree's faults are all found.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

struct Unit {
    std::string layer, folder;            // engine, ..., kelwriter; engine/document, tools/kel, ...
    bool core = false, noWidgets = false; // QtCore only; no widget, chart or printing header
    std::set<std::string> mayInclude;     // layers
};

// The layer of a file by its path relative to the root; false outside the tree.
bool unitOf(const fs::path &relative, Unit &unit)
{
    std::vector<std::string> parts;
    for (const auto &p : relative)
        parts.push_back(p.string());
    if (parts.size() < 3 || (parts[0] != "src" && parts[0] != "tools"))
        return false;
    unit.layer = parts[1];
    if (parts[0] == "tools")
        unit.folder = "tools/" + parts[1]; // kel, kel-render and kelwriter are the layers below
    else
        unit.folder = parts.size() > 3 ? parts[1] + "/" + parts[2] : parts[1];
    const std::map<std::string, std::set<std::string>> allowed{
        {"engine", {"engine"}},
        {"texts", {"engine", "texts"}},
        {"render", {"engine", "render"}},
        {"gui", {"engine", "texts", "render", "gui"}},
        {"viewer", {"engine", "texts", "render", "gui", "viewer"}},
        {"kel", {"engine", "texts"}},
        {"kel-render", {"engine", "texts", "render", "gui"}},
        {"kelwriter", {"engine"}}};
    const auto it = allowed.find(unit.layer);
    if (it == allowed.end() || (parts[0] == "tools") != (unit.layer.rfind("kel", 0) == 0))
        return false;
    unit.mayInclude = it->second;
    unit.core = unit.layer == "engine" || unit.layer == "texts" || unit.layer == "kel" || unit.layer == "kelwriter";
    unit.noWidgets = unit.layer == "render";
    return true;
}

// The Qt module that provides `header`: "QtWidgets/QWidget" names it, a
// bare "QWidget" is looked up in every module's folder.
std::string qtModuleOf(const std::string &header, const fs::path &qtRoot)
{
    if (const auto slash = header.find('/'); slash != std::string::npos || header.empty() || header[0] != 'Q')
        return slash != std::string::npos && header.rfind("Qt", 0) == 0 ? header.substr(0, slash) : std::string();
    if (header.rfind("Qt", 0) == 0 && fs::is_directory(qtRoot / header))
        return header; // a whole module, e.g. <QtWidgets>
    std::error_code ec;
    for (const auto &module : fs::directory_iterator(qtRoot, ec))
        if (module.is_directory() && fs::exists(module.path() / header))
            return module.path().filename().string();
    return {};
}

std::vector<std::string> check(const fs::path &root, const fs::path &qtRoot)
{
    std::vector<std::string> faults;
    std::map<std::string, std::map<std::string, std::string>> folderEdges; // from -> to -> example file
    std::map<std::string, std::string> moduleCache;
    const std::regex quoted(R"(^\s*#\s*include\s*"([^"]+)\")");
    const std::regex angled(R"(^\s*#\s*include\s*<([^>]+)>)");

    std::vector<fs::path> files;
    for (const char *top : {"src", "tools"}) {
        std::error_code ec;
        for (auto it = fs::recursive_directory_iterator(root / top, ec); !ec && it != fs::end(it); it.increment(ec))
            if (it->is_regular_file() && (it->path().extension() == ".h" || it->path().extension() == ".cpp"))
                files.push_back(it->path());
    }
    std::sort(files.begin(), files.end());

    for (const fs::path &file : files) {
        const fs::path relative = fs::relative(file, root);
        Unit unit;
        std::ifstream in(file);
        if (!unitOf(relative, unit))
            continue;
        std::string line;
        for (int number = 1; std::getline(in, line); ++number) {
            const std::string where = relative.generic_string() + ":" + std::to_string(number);
            std::smatch m;
            if (std::regex_search(line, m, quoted)) {
                const std::string target = m[1];
                Unit to; // a neighbour in the same folder has no slash and no unit
                if (target.find('/') == std::string::npos || !unitOf(fs::path("src") / target, to))
                    continue;
                if (!unit.mayInclude.count(to.layer)) {
                    faults.push_back(where + ": " + unit.layer + " includes " + target + " (layer " + to.layer + ")");
                    continue;
                }
                if (to.layer == unit.layer && to.folder != unit.folder)
                    folderEdges[unit.folder].emplace(to.folder, where);
            } else if (std::regex_search(line, m, angled)) {
                const std::string header = m[1];
                auto cached = moduleCache.find(header);
                if (cached == moduleCache.end())
                    cached = moduleCache.emplace(header, qtModuleOf(header, qtRoot)).first;
                const std::string &module = cached->second;
                const std::string fault = where + ": " + unit.layer + " includes <" + header + "> from " + module;
                if (unit.core && !module.empty() && module != "QtCore")
                    faults.push_back(fault + " (QtCore only)");
                if (unit.noWidgets && (module == "QtWidgets" || module == "QtCharts" || module == "QtPrintSupport"))
                    faults.push_back(fault);
            }
        }
    }

    // Folder loops: depth-first search for a back edge.
    std::map<std::string, int> state; // 0 new, 1 on the path, 2 done
    std::vector<std::string> path;
    std::function<void(const std::string &)> visit = [&](const std::string &folder) {
        state[folder] = 1;
        path.push_back(folder);
        for (const auto &[next, where] : folderEdges[folder]) {
            if (state[next] == 1) {
                std::string loop;
                for (auto it = std::find(path.begin(), path.end(), next); it != path.end(); ++it)
                    loop += *it + " -> ";
                faults.push_back(where + ": folders include each other: " + loop + next); // once per back edge
            } else if (state[next] == 0)
                visit(next);
        }
        path.pop_back(), state[folder] = 2;
    };
    for (const auto &edge : folderEdges) // visiting may add keys; a std::map keeps this loop valid
        if (state[edge.first] == 0)
            visit(edge.first);
    return faults;
}

// A tree with one fault of each kind and the same includes done right; the
// check must name exactly the faults.
int selfTest(const fs::path &qtRoot)
{
    const fs::path root = fs::temp_directory_path() / ("layercheck-" + std::to_string(::getpid()));
    fs::remove_all(root);
    const std::pair<const char *, const char *> tree[] = {
        {"src/engine/document/document.h", "#include <QString>\n#include \"engine/indexes/index.h\"\n"},
        {"src/engine/indexes/index.h", "#include \"engine/document/document.h\"\n"},
        {"src/engine/overview/a.h", "#include \"engine/selection/b.h\"\n#include <QColor>\n"},
        {"src/engine/selection/b.h", "#include \"engine/settings/c.h\"\n"},
        {"src/engine/settings/c.h", "#include \"engine/overview/a.h\"\n#include \"texts/words.h\"\n"},
        {"src/texts/words.h", "#include \"engine/document/document.h\"\n#include \"render/draw.h\"\n"},
        {"src/render/draw.h", "#include <QPainter>\n#include <QWidget>\n#include \"engine/overview/a.h\"\n"},
        {"src/gui/shell/window.h", "#include <QWidget>\n#include \"render/draw.h\"\n#include \"texts/words.h\"\n"},
        {"src/viewer/main.cpp", "#include \"gui/shell/window.h\"\n"},
        {"tools/kel/main.cpp",
         "#include \"commands.h\"\n#include \"engine/document/document.h\"\n#include \"gui/shell/window.h\"\n"},
        {"src/gui/graphs/chart.h", "#include <QChart>\n"},
        {"tools/kel/render.cpp", "#include \"gui/graphs/chart.h\"\n#include <QPainter>\n"},
        {"tools/kel-render/main.cpp", "#include \"gui/graphs/chart.h\"\n#include <QApplication>\n"},
    };
    for (const auto &[file, text] : tree)
        fs::create_directories((root / file).parent_path()), std::ofstream(root / file) << text;
    std::vector<std::string> found = check(root, qtRoot);
    fs::remove_all(root);
    std::sort(found.begin(), found.end());

    const std::vector<std::string> expected{
        "src/engine/indexes/index.h:1: folders include each other: engine/document -> engine/indexes -> "
        "engine/document",
        "src/engine/overview/a.h:2: engine includes <QColor> from QtGui (QtCore only)",
        "src/engine/settings/c.h:1: folders include each other: engine/overview -> engine/selection -> engine/settings "
        "-> engine/overview",
        "src/engine/settings/c.h:2: engine includes texts/words.h (layer texts)",
        "src/render/draw.h:2: render includes <QWidget> from QtWidgets",
        "src/texts/words.h:2: texts includes render/draw.h (layer render)",
        "tools/kel/main.cpp:3: kel includes gui/shell/window.h (layer gui)",
        "tools/kel/render.cpp:1: kel includes gui/graphs/chart.h (layer gui)",
        "tools/kel/render.cpp:2: kel includes <QPainter> from QtGui (QtCore only)",
    };
    for (const std::string &f : found)
        std::cout << (found == expected ? "found as planted: " : "self-test failed, found: ") << f << "\n";
    return found == expected ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
        return std::cerr << "usage: layercheck SOURCE_ROOT QT_INCLUDE_ROOT | --self-test QT_INCLUDE_ROOT\n", 64;
    if (std::string(argv[1]) == "--self-test")
        return selfTest(argv[2]);
    const std::vector<std::string> faults = check(argv[1], argv[2]);
    std::copy(faults.begin(), faults.end(), std::ostream_iterator<std::string>(std::cout, "\n"));
    return faults.empty() ? 0 : 1;
}
