#include <fmt/format.h>

#include <map>

#include "host/scene_records.h"
#include "host/wide_text.h"

namespace tavrik_host {
namespace {

/// Who holds a reference to whom: first the nodes, behind them the objects, behind those the controllers.
class ReferenceGraph {
 public:
    explicit ReferenceGraph(const SceneRecords& records) : records_(records) {
        targets_.resize(records.nodes.size() + records.objects.size() + records.controllers.size());
        std::map<ULONG, std::size_t> nodeOf;
        for (std::size_t i = 0; i < records.nodes.size(); ++i) nodeOf[records.nodes[i].handle] = i;
        for (std::size_t i = 0; i < records.nodes.size(); ++i) {
            const NodeRecord& node = records.nodes[i];
            if (node.parent != kNone) targets_[i].push_back(std::size_t(node.parent));
            if (node.object != kNone) targets_[i].push_back(Object(node.object));
            if (node.controller != kNone) targets_[i].push_back(Controller(node.controller));
        }
        for (std::size_t i = 0; i < records.objects.size(); ++i) AddThing(Object(int(i)), records.objects[i], nodeOf);
        for (std::size_t i = 0; i < records.controllers.size(); ++i) {
            AddThing(Controller(int(i)), records.controllers[i], nodeOf);
        }
    }

    /// Depth first, on a stack of its own: chains of nodes may be long.
    void Check() const {
        enum class State : std::uint8_t { New, Open, Done };
        std::vector<State> states(targets_.size(), State::New);
        struct Visit {
            std::size_t at, next;
        };
        std::vector<Visit> open;
        for (std::size_t start = 0; start < targets_.size(); ++start) {
            if (states[start] != State::New) continue;
            open.push_back({start, 0});
            states[start] = State::Open;
            while (!open.empty()) {
                Visit& visit = open.back();
                if (visit.next == targets_[visit.at].size()) {
                    states[visit.at] = State::Done;
                    open.pop_back();
                    continue;
                }
                const std::size_t target = targets_[visit.at][visit.next++];
                if (states[target] == State::Open) Refuse(fmt::format("{} would come to depend on itself.", NameOf(target)));
                if (states[target] == State::Done) continue;
                states[target] = State::Open;
                open.push_back({target, 0});
            }
        }
    }

 private:
    std::size_t Object(int i) const { return records_.nodes.size() + std::size_t(i); }
    std::size_t Controller(int i) const { return Object(int(records_.objects.size())) + std::size_t(i); }

    void AddThing(std::size_t at, const ThingRecord& thing, const std::map<ULONG, std::size_t>& nodeOf) {
        for (const ParamRecord& param : thing.parameters) {
            for (const EntryRecord& entry : param.entries) {
                // A pointer that is no reference depends on nothing.
                if (entry.node != 0 && (param.def->flags & P_NO_REF) == 0) targets_[at].push_back(nodeOf.at(entry.node));
                if (entry.object != kNone) targets_[at].push_back(Object(entry.object));
            }
        }
        if (thing.wrapped != kNone) targets_[at].push_back(Controller(thing.wrapped));
    }

    std::string NameOf(std::size_t at) const {
        if (at < records_.nodes.size()) return fmt::format("node \"{}\"", ToUtf8(records_.nodes[at].name));
        at -= records_.nodes.size();
        return at < records_.objects.size() ? records_.objects[at].name
                                            : records_.controllers[at - records_.objects.size()].name;
    }

    const SceneRecords& records_;
    std::vector<std::vector<std::size_t>> targets_;
};

}  // namespace

void CheckLoops(const SceneRecords& records) { ReferenceGraph(records).Check(); }

}  // namespace tavrik_host
