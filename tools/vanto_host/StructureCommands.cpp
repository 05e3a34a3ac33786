// Subcommands of the assembly structure: children (list, add, remove), where-used, and the
// structure walked both ways as an indented tree or a Graphviz graph.
#include "Host.h"

#include <memory>
#include <set>

namespace vanto::host {

namespace {

struct Arguments {
    std::string parent;
    std::vector<std::string> paths;
    bool drawings = false;
    bool tree = false;
    bool dot = false;
};

// One level of the structure: a document's children, or the documents that use it.
using Level = std::function<HRESULT(const GUserText& path, RelationMap* related)>;

// The structure below (or above) a document, each document walked once: one met again is marked
// and not walked again, which also ends a cycle.
class Walk {
public:
    // How many documents there are is known only at the end: progress counts up.
    Walk(Level level, const char* what) : level_(std::move(level)), progress_(what, 0) {}

    boost::json::object Node(const GUserText& path, const GUserText& relation) {
        boost::json::object node{{"path", Json(path)}};
        if (!relation.IsEmpty()) {
            node["relation"] = Json(relation);
        }
        if (!seen_.insert(path).second) {
            node["repeated"] = true;
            return node;
        }
        RelationMap related;
        const HRESULT hr = level_(path, &related);
        progress_.Step();
        if (hr != S_OK) {
            result_ = hr;
            node["result"] = HResultText(hr);
        }
        boost::json::array below;
        for (const auto& [next, urn] : related) {
            edges_.push_back({path, next});
            below.push_back(Node(next, urn));
        }
        node["related"] = std::move(below);
        return node;
    }

    HRESULT Result() const { return result_; }
    const std::vector<std::pair<GUserText, GUserText>>& Edges() const { return edges_; }

private:
    Level level_;
    Progress progress_;
    std::set<GUserText> seen_;
    std::vector<std::pair<GUserText, GUserText>> edges_;
    HRESULT result_ = S_OK;
};

void Indent(const boost::json::object& node, const std::string& prefix, bool last, bool root,
            std::string& out) {
    std::string line = root ? std::string() : prefix + (last ? "└─ " : "├─ ");
    line += CellText(node.at("path"));
    if (node.contains("repeated")) {
        line += "  (again, see above)";
    }
    if (const boost::json::value* result = node.if_contains("result")) {
        line += "  [" + CellText(*result) + "]";
    }
    out += line + "\n";
    const boost::json::value* related = node.if_contains("related");
    if (related == nullptr) {
        return;
    }
    const boost::json::array& children = related->get_array();
    const std::string next = root ? std::string() : prefix + (last ? "   " : "│  ");
    for (std::size_t i = 0; i < children.size(); ++i) {
        Indent(children[i].get_object(), next, i + 1 == children.size(), false, out);
    }
}

std::string Quoted(const GUserText& text) {
    std::string quoted = "\"";
    for (const char c : text.Narrow()) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
        }
        quoted += c;
    }
    return quoted + "\"";
}

// `upward`: the edges run from a used document to its users; the graph draws users above.
int PrintGraph(Host& host, const char* operation, const std::vector<std::string>& roots,
               Level level, bool upward, bool dot) {
    Walk walk(std::move(level), operation);
    boost::json::array trees;
    for (const std::string& root : roots) {
        trees.push_back(walk.Node(Wide(root), GUserText()));
    }
    if (dot) {
        std::string graph = "digraph \"" + std::string(operation) + "\" {\n  rankdir=LR;\n";
        for (const auto& [from, to] : walk.Edges()) {
            graph +=
                "  " +
                (upward ? Quoted(to) + " -> " + Quoted(from) : Quoted(from) + " -> " + Quoted(to)) +
                ";\n";
        }
        graph += "}\n";
        std::fputs(graph.c_str(), stdout);
        return host.Conclude(Report(operation).Result(walk.Result()));
    }
    std::string text;
    for (const boost::json::value& tree : trees) {
        Indent(tree.get_object(), "", true, true, text);
    }
    return host.Print(Report(operation).Result(walk.Result()).Member("trees", trees).Text(text));
}

Report RelationReport(const char* operation, HRESULT hr, const RelationMap& related,
                      const char* header) {
    Report report(operation);
    report.Result(hr).Columns({{"path", header}, {"relation", "relation URN"}});
    for (const auto& [path, urn] : related) {
        report.Row({{"path", Json(path)}, {"relation", Json(urn)}});
    }
    return report;
}

} // namespace

void AddStructureCommands(CLI::App& app, Runner& chosen) {
    auto a = std::make_shared<Arguments>();

    CLI::App* children =
        app.add_subcommand("children", "an assembly's children: list, add, remove");
    children->require_subcommand(1, 1);
    AddCommand(*children, "list", "the children of a document (GetChildren)", Needs::Session,
               chosen,
               [a](Host& host) {
                   RelationMap related;
                   const HRESULT hr = host.Files().GetChildren(Wide(a->parent), &related);
                   return host.Print(RelationReport("GetChildren", hr, related, "child"));
               })
        ->add_option("PARENT", a->parent, "the parent document")
        ->required()
        ->check(PathCheck());
    for (const bool add : {true, false}) {
        CLI::App* change =
            AddCommand(*children, add ? "add" : "remove",
                       add ? "put documents under a parent (AddChildren)"
                           : "take documents from under a parent (RemoveChildren)",
                       Needs::Session, chosen, [a, add](Host& host) {
                           const PathList paths = WideList(a->paths);
                           IVANTOFileServices& files = host.Files();
                           const HRESULT hr = add ? files.AddChildren(Wide(a->parent), paths)
                                                  : files.RemoveChildren(Wide(a->parent), paths);
                           return host.Print(Report(add ? "AddChildren" : "RemoveChildren")
                                                 .Result(hr)
                                                 .Field("parent", "parent", Json(a->parent))
                                                 .Field("children", "children",
                                                        boost::json::value_from(a->paths)));
                       });
        change->add_option("PARENT", a->parent, "the parent document")
            ->required()
            ->check(PathCheck());
        AddPaths(*change, a->paths, "CHILD", "child document");
    }

    CLI::App* whereUsed = AddCommand(
        app, "where-used", "the documents that use files (GetCorvaneWUResults)", Needs::Session,
        chosen, [a](Host& host) {
            const bool drawings = a->drawings;
            Level level = [&host, drawings](const GUserText& path, RelationMap* related) {
                return host.Files().GetCorvaneWUResults(PathList{path}, related, drawings);
            };
            if (a->tree || a->dot) {
                return PrintGraph(host, "where-used", a->paths, level, true, a->dot);
            }
            // One call per path, as the component sends one command per path: the same answer,
            // with progress between them; the first failure ends it, as it would end the call.
            RelationMap related;
            HRESULT hr = S_OK;
            Progress progress("where-used", a->paths.size());
            for (const std::string& path : a->paths) {
                hr = level(Wide(path), &related);
                progress.Step();
                if (hr != S_OK) {
                    break;
                }
            }
            return host.Print(RelationReport("GetCorvaneWUResults", hr, related, "used by"));
        });
    AddPaths(*whereUsed, a->paths);
    whereUsed->add_flag("--drawings", a->drawings, "drawings only (DrawingOf relations)");
    whereUsed->add_flag("--tree", a->tree, "follow the users' users, as an indented tree");
    whereUsed->add_flag("--dot", a->dot, "write the graph for Graphviz instead");

    CLI::App* tree =
        AddCommand(app, "tree", "an assembly's structure, children of children (GetChildren)",
                   Needs::Session, chosen, [a](Host& host) {
                       Level level = [&host](const GUserText& path, RelationMap* related) {
                           return host.Files().GetChildren(path, related);
                       };
                       return PrintGraph(host, "tree", a->paths, level, false, a->dot);
                   });
    AddPaths(*tree, a->paths, "PATH", "assembly document");
    tree->add_flag("--dot", a->dot, "write the graph for Graphviz instead");
}

} // namespace vanto::host
