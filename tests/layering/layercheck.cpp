// SPDX-License-Identifier: GPL-3.0-or-later
// Checks that the source tree's includes run one way:
//   engine < texts, render < gui < viewer   (texts and render never meet)
//   tools/kel sees engine, texts and render, and of the windows only the
//   graph folder (charts are drawn by Qt Charts, which needs widgets);
//   tools/kelwriter only the engine
// that the engine includes no Qt module but QtCore, that the drawing layer
// includes no widget, chart or printing header, and that no two folders of
// one layer depend on each other, however long the loop.
//
//   layercheck SOURCE_ROOT QT_INCLUDE_ROOT     prints each violation, exit 1 if any
//   layercheck --self-test QT_INCLUDE_ROOT     builds a tree with known faults
//                                              in a temporary folder and
//                                              checks they are all found
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

struct Unit {
    std::string layer;  // engine, texts, render, gui, viewer, kel, kelwriter
    std::string folder; // engine/document, tools/kel, ...
    bool core = false;  // QtCore only
    bool noWidgets = false;
    std::set<std::string> mayInclude; // layers
    std::set<std::string> mayIncludeFolders; // single folders of other layers
};

// The layer of a file by its path relative to the root; empty when the file
// is outside the checked tree.
bool unitOf(const fs::path &relative, Unit &unit)
{
    std::vector<std::string> parts;
    for (const auto &p : relative)
        parts.push_back(p.string());
    if (parts.size() < 3)
        return false;
    if (parts[0] == "src") {
        unit.layer = parts[1];
        unit.folder = parts.size() > 3 ? parts[1] + "/" + parts[2] : parts[1];
    } else if (parts[0] == "tools" && (parts[1] == "kel" || parts[1] == "kelwriter")) {
        unit.layer = parts[1];
        unit.folder = "tools/" + parts[1];
    } else {
        return false;
    }
    const std::map<std::string, std::set<std::string>> allowed{
        {"engine", {"engine"}},
        {"texts", {"engine", "texts"}},
        {"render", {"engine", "render"}},
        {"gui", {"engine", "texts", "render", "gui"}},
        {"viewer", {"engine", "texts", "render", "gui", "viewer"}},
        {"kel", {"engine", "texts", "render"}},
        {"kelwriter", {"engine"}},
    };
    const auto it = allowed.find(unit.layer);
    if (it == allowed.end())
        return false;
    unit.mayInclude = it->second;
    if (unit.layer == "kel")
        unit.mayIncludeFolders = {"gui/graphs"};
    unit.core = unit.layer == "engine" || unit.layer == "texts" || unit.layer == "kelwriter";
    unit.noWidgets = unit.layer == "render";
    return true;
}

// The Qt module that provides `header`: "QtWidgets/QWidget" names it, a
// bare "QWidget" is looked up in every module's folder.
std::string qtModuleOf(const std::string &header, const fs::path &qtRoot)
{
    const auto slash = header.find('/');
    if (slash != std::string::npos)
        return header.rfind("Qt", 0) == 0 ? header.substr(0, slash) : std::string();
    if (header.empty() || header[0] != 'Q')
        return {};
    if (header.rfind("Qt", 0) == 0 && fs::is_directory(qtRoot / header))
        return header; // a whole module, e.g. <QtWidgets>
    std::error_code ec;
    for (const auto &module : fs::directory_iterator(qtRoot, ec)) {
        if (module.is_directory() && fs::exists(module.path() / header))
            return module.path().filename().string();
    }
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
        for (auto it = fs::recursive_directory_iterator(root / top, ec); !ec && it != fs::recursive_directory_iterator();
             it.increment(ec)) {
            const std::string ext = it->path().extension().string();
            if (it->is_regular_file() && (ext == ".h" || ext == ".cpp"))
                files.push_back(it->path());
        }
    }
    std::sort(files.begin(), files.end());

    for (const fs::path &file : files) {
        const fs::path relative = fs::relative(file, root);
        Unit unit;
        if (!unitOf(relative, unit))
            continue;
        std::ifstream in(file);
        std::string line;
        int number = 0;
        while (std::getline(in, line)) {
            ++number;
            const std::string where = relative.generic_string() + ":" + std::to_string(number);
            std::smatch m;
            if (std::regex_search(line, m, quoted)) {
                const std::string target = m[1];
                const auto slash = target.find('/');
                if (slash == std::string::npos)
                    continue; // a neighbour in the same folder
                Unit to;
                if (!unitOf(fs::path("src") / target, to))
                    continue;
                if (!unit.mayInclude.count(to.layer) && !unit.mayIncludeFolders.count(to.folder)) {
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
                if (module.empty())
                    continue;
                if (unit.core && module != "QtCore")
                    faults.push_back(where + ": " + unit.layer + " includes <" + header + "> from " + module
                                     + " (QtCore only)");
                if (unit.noWidgets && (module == "QtWidgets" || module == "QtCharts" || module == "QtPrintSupport"))
                    faults.push_back(where + ": " + unit.layer + " includes <" + header + "> from " + module);
            }
        }
    }

    // Folder loops: depth-first search for a back edge.
    std::map<std::string, int> state; // 0 new, 1 on the path, 2 done
    std::vector<std::string> path;
    std::set<std::string> reported;
    std::function<void(const std::string &)> visit = [&](const std::string &folder) {
        state[folder] = 1;
        path.push_back(folder);
        for (const auto &[next, where] : folderEdges[folder]) {
            if (state[next] == 1) {
                std::string loop;
                for (auto it = std::find(path.begin(), path.end(), next); it != path.end(); ++it)
                    loop += *it + " -> ";
                loop += next;
                if (reported.insert(loop).second)
                    faults.push_back(where + ": folders include each other: " + loop);
            } else if (state[next] == 0) {
                visit(next);
            }
        }
        path.pop_back();
        state[folder] = 2;
    };
    std::vector<std::string> folders;
    for (const auto &[from, edges] : folderEdges)
        folders.push_back(from);
    for (const std::string &folder : folders)
        if (state[folder] == 0)
            visit(folder);
    return faults;
}

void write(const fs::path &file, const std::string &text)
{
    fs::create_directories(file.parent_path());
    std::ofstream(file) << text;
}

// A tree with one fault of each kind and the same includes done right; the
// check must name exactly the faults.
int selfTest(const fs::path &qtRoot)
{
    const fs::path root = fs::temp_directory_path() / ("layercheck-" + std::to_string(::getpid()));
    fs::remove_all(root);
    write(root / "src/engine/document/document.h", "#include <QString>\n#include \"engine/indexes/index.h\"\n");
    write(root / "src/engine/indexes/index.h", "#include \"engine/document/document.h\"\n");
    write(root / "src/engine/overview/a.h", "#include \"engine/selection/b.h\"\n#include <QColor>\n");
    write(root / "src/engine/selection/b.h", "#include \"engine/settings/c.h\"\n");
    write(root / "src/engine/settings/c.h", "#include \"engine/overview/a.h\"\n#include \"texts/words.h\"\n");
    write(root / "src/texts/words.h", "#include \"engine/document/document.h\"\n#include \"render/draw.h\"\n");
    write(root / "src/render/draw.h", "#include <QPainter>\n#include <QWidget>\n#include \"engine/overview/a.h\"\n");
    write(root / "src/gui/shell/window.h", "#include <QWidget>\n#include \"render/draw.h\"\n#include \"texts/words.h\"\n");
    write(root / "src/viewer/main.cpp", "#include \"gui/shell/window.h\"\n");
    write(root / "tools/kel/main.cpp", "#include \"commands.h\"\n#include \"engine/document/document.h\"\n"
                                       "#include \"gui/shell/window.h\"\n");
    write(root / "src/gui/graphs/chart.h", "#include <QChart>\n");
    write(root / "tools/kel/render.cpp", "#include \"gui/graphs/chart.h\"\n");
    const std::vector<std::string> faults = check(root, qtRoot);
    fs::remove_all(root);

    const std::vector<std::string> expected{
        "src/engine/indexes/index.h:1: folders include each other: engine/document -> engine/indexes -> engine/document",
        "src/engine/overview/a.h:2: engine includes <QColor> from QtGui (QtCore only)",
        "src/engine/settings/c.h:1: folders include each other: engine/overview -> engine/selection -> engine/settings -> engine/overview",
        "src/engine/settings/c.h:2: engine includes texts/words.h (layer texts)",
        "src/render/draw.h:2: render includes <QWidget> from QtWidgets",
        "src/texts/words.h:2: texts includes render/draw.h (layer render)",
        "tools/kel/main.cpp:3: kel includes gui/shell/window.h (layer gui)",
    };
    std::vector<std::string> sortedFaults = faults;
    std::sort(sortedFaults.begin(), sortedFaults.end());
    if (sortedFaults == expected) {
        std::cout << "self-test: all " << expected.size() << " planted faults found, nothing else\n";
        return 0;
    }
    std::cout << "self-test failed; found:\n";
    for (const std::string &f : sortedFaults)
        std::cout << "  " << f << "\n";
    std::cout << "expected:\n";
    for (const std::string &f : expected)
        std::cout << "  " << f << "\n";
    return 1;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::cerr << "usage: layercheck SOURCE_ROOT QT_INCLUDE_ROOT | --self-test QT_INCLUDE_ROOT\n";
        return 64;
    }
    if (std::string(argv[1]) == "--self-test")
        return selfTest(argv[2]);
    const std::vector<std::string> faults = check(argv[1], argv[2]);
    for (const std::string &f : faults)
        std::cout << f << "\n";
    if (faults.empty())
        std::cout << "includes run one way\n";
    return faults.empty() ? 0 : 1;
}
