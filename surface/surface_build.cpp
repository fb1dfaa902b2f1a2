// How the ground's octree comes to be: SurfaceTree::Build.
//
//   check the mesh -> pad its cube -> set up the triangles -> split the upper levels -> finish the subtrees, in parallel
//   -> join them in order -> link the leaves to their neighbours, in parallel -> lay the grid over it
//
// The upper levels end at a fixed depth and each subtree grows in storage of its own, so the joined tree is the same for any
// number of threads.

#include <algorithm>
#include <atomic>
#include <cmath>
#include <exception>
#include <new>
#include <thread>
#include <utility>

#include "surface/box_clip.h"
#include "surface/physical_memory.h"
#include "surface/surface_mesh_check.h"
#include "surface/surface_tree.h"

namespace tavrik {
namespace {

constexpr int kDeepest = 16;   // nodes here are leaves however many triangles they hold
constexpr int kTaskDepth = 3;  // each node at this depth is a task: up to 512 of them, enough to share out evenly

// Memory taken against memory allowed.
class MemoryBudget {
 public:
    explicit MemoryBudget(std::size_t limit) : limit_(limit) {}

    // False when that passes the limit; the build is then over.
    bool Take(std::size_t bytes) { return taken_.fetch_add(bytes, std::memory_order_relaxed) + bytes <= limit_; }
    void GiveBack(std::size_t bytes) { taken_.fetch_sub(bytes, std::memory_order_relaxed); }
    std::size_t limit() const { return limit_; }

 private:
    const std::size_t limit_;
    std::atomic<std::size_t> taken_ = 0;
};

// Makes room for `more` elements and counts it. While a vector moves, its old and its new storage both exist.
template <typename T>
bool MakeRoom(std::vector<T>& elements, std::size_t more, MemoryBudget& budget) {
    const std::size_t needed = elements.size() + more, old = elements.capacity();
    if (needed <= old) return true;
    const std::size_t room = std::max(needed, old + old / 2);
    if (!budget.Take(room * sizeof(T))) return false;
    elements.reserve(room);
    budget.GiveBack(old * sizeof(T));
    return true;
}

template <typename T>
void FreeVector(std::vector<T>& elements, MemoryBudget& budget) {
    budget.GiveBack(elements.capacity() * sizeof(T));
    std::vector<T>().swap(elements);
}

// Cubes and lists of one subtree. Indices count from the subtree's own storage.
struct TreePart {
    SurfaceLink root;
    std::vector<SurfaceNode> nodes;
    std::vector<SurfaceBlock> blocks;
    std::vector<SurfaceFaces> faces;

    std::size_t bytes() const {
        return nodes.size() * sizeof(SurfaceNode) + blocks.size() * sizeof(SurfaceBlock) + faces.size() * sizeof(SurfaceFaces);
    }
};

// A subtree that is still to be built.
struct SubtreeTask {
    std::size_t parent, child;  // its place: a node of the upper levels, and which of that node's children
    Box3 box;
    std::vector<std::uint32_t> list;
    TreePart part;
};

Point3 CentreOf(const Box3& box) { return (box.pmin + box.pmax) * 0.5f; }

// Splits nodes depth first. The lists of the nodes on the way down stand in one stack of triangle indices.
class NodeSplitter {
 public:
    NodeSplitter(const std::vector<Point3>& verts, const std::vector<SurfaceTriangle>& triangles, MemoryBudget& budget)
        : verts_(verts), triangles_(triangles), budget_(budget) {}
    ~NodeSplitter() {
        FreeVector(lists_, budget_);
        FreeVector(touched_, budget_);
    }
    NodeSplitter(const NodeSplitter&) = delete;
    NodeSplitter& operator=(const NodeSplitter&) = delete;

    // Builds a node and all below it into `part`; what lies at `taskDepth` goes to `tasks` instead, if there are any to be.
    bool Split(const Box3& box, int depth, const std::vector<std::uint32_t>& list, TreePart& part,
               std::vector<SubtreeTask>* tasks) {
        lists_.clear();
        if (!MakeRoom(lists_, list.size(), budget_)) return false;
        lists_.insert(lists_.end(), list.begin(), list.end());
        part_ = &part;
        tasks_ = tasks;
        return SplitNode(box, depth, 0, list.size(), part.root);
    }

 private:
    bool SplitNode(const Box3& box, int depth, std::size_t first, std::size_t count, SurfaceLink& link) {
        const bool splits = count > std::size_t(depth) && depth < kDeepest;
        if (!splits) return AddLeaf(box, first, count, link);

        std::size_t childCount[8] = {};
        const ChildWalls walls = WallsOfChildren(box);
        touched_.clear();
        if (!MakeRoom(touched_, count, budget_)) return false;
        for (std::size_t i = first; i < first + count; ++i) {
            const std::uint32_t* v = triangles_[lists_[i]].corner;
            const Point3 corner[3] = {verts_[v[0]], verts_[v[1]], verts_[v[2]]};
            const unsigned touched = ChildrenTouched(corner, walls);
            touched_.push_back(std::uint8_t(touched));
            for (std::size_t child = 0; child < 8; ++child) childCount[child] += touched >> child & 1;
        }

        // The children's lists follow on the stack; each keeps its parent's order.
        std::size_t childFirst[8], next[8], total = 0;
        const std::size_t top = lists_.size();
        for (std::size_t child = 0; child < 8; ++child) {
            childFirst[child] = next[child] = top + total;
            total += childCount[child];
        }
        if (!MakeRoom(lists_, total, budget_)) return false;
        lists_.resize(top + total);
        for (std::size_t i = 0; i < count; ++i) {
            for (std::size_t child = 0; child < 8; ++child) {
                if ((touched_[i] >> child & 1) != 0) lists_[next[child]++] = lists_[first + i];
            }
        }

        const std::size_t node = part_->nodes.size();
        if (node >= SurfaceLink::kMostIndices || !MakeRoom(part_->nodes, 1, budget_)) return false;
        part_->nodes.push_back({CentreOf(box), 0.0f, {}, {}});
        link = SurfaceLink::Inner(node);
        for (std::size_t child = 0; child < 8; ++child) {
            const Box3 childBox = ChildBox(walls, unsigned(child));
            if (tasks_ != nullptr && depth + 1 == kTaskDepth) {
                if (!AddTask(node, child, childBox, childFirst[child], childCount[child])) return false;
                continue;
            }
            SurfaceLink built;
            if (!SplitNode(childBox, depth + 1, childFirst[child], childCount[child], built)) return false;
            part_->nodes[node].child[child] = built;
        }
        lists_.resize(top);
        return true;
    }

    bool AddTask(std::size_t parent, std::size_t child, const Box3& box, std::size_t first, std::size_t count) {
        SubtreeTask task{parent, child, box, {}, {}};
        if (!MakeRoom(task.list, count, budget_)) return false;
        task.list.assign(lists_.begin() + std::ptrdiff_t(first), lists_.begin() + std::ptrdiff_t(first + count));
        tasks_->push_back(std::move(task));
        return true;
    }

    bool AddLeaf(const Box3& box, std::size_t first, std::size_t count, SurfaceLink& link) {
        const std::size_t groups = (count + 3) / 4;
        const std::size_t block = part_->blocks.size(), firstFaces = part_->faces.size();
        if (block + groups >= SurfaceLink::kMostIndices || !MakeRoom(part_->blocks, 1 + groups, budget_) ||
            !MakeRoom(part_->faces, groups, budget_)) {
            return false;
        }
        link = SurfaceLink::Leaf(block);
        const SurfaceLeaf leaf{box.pmin, 0.0f, box.pmax, 0.0f, {}, std::uint32_t(count), std::uint32_t(firstFaces)};
        part_->blocks.push_back({.leaf = leaf});
        for (std::size_t from = 0; from < count; from += 4) {
            SurfacePlanes planes{};
            SurfaceFaces faces{};
            for (std::size_t i = 0; i < std::min<std::size_t>(4, count - from); ++i) {
                faces.face[i] = lists_[first + from + i];
                const SurfaceTriangle& triangle = triangles_[faces.face[i]];
                planes.nx[i] = triangle.normal.x;
                planes.ny[i] = triangle.normal.y;
                planes.nz[i] = triangle.normal.z;
                planes.planeD[i] = triangle.planeD;
            }
            part_->blocks.push_back({.planes = planes});
            part_->faces.push_back(faces);
        }
        return true;
    }

    const std::vector<Point3>& verts_;
    const std::vector<SurfaceTriangle>& triangles_;
    MemoryBudget& budget_;
    std::vector<std::uint32_t> lists_;
    std::vector<std::uint8_t> touched_;  // the children that each triangle of the node in hand touches
    TreePart* part_ = nullptr;
    std::vector<SubtreeTask>* tasks_ = nullptr;
};

// Gives each leaf the cubes beyond its faces. A cube's own are passed down to its children, so inner nodes keep none.
class NeighbourLinker {
 public:
    struct Start {
        SurfaceLink cube;
        Box3 box;
        SurfaceLink neighbour[6];
    };

    NeighbourLinker(const std::vector<SurfaceNode>& nodes, std::vector<SurfaceBlock>& blocks)
        : nodes_(nodes), blocks_(blocks) {}

    // Links all leaves in `from`; inner nodes `levels` below it are put into `later`, if given, instead.
    void Link(const Start& from, int levels, std::vector<Start>* later) const {
        if (from.cube.endsDescent()) {
            std::copy_n(from.neighbour, 6, blocks_[from.cube.index()].leaf.neighbour);
            return;
        }
        if (later != nullptr && levels == 0) {
            later->push_back(from);
            return;
        }
        const SurfaceNode& node = nodes_[from.cube.index()];
        const ChildWalls walls = WallsOfChildren(from.box);
        for (std::size_t i = 0; i < 8; ++i) {
            Start child{node.child[i], ChildBox(walls, unsigned(i)), {}};
            const Point3 centre = CentreOf(child.box);
            for (std::size_t axis = 0; axis < 3; ++axis) {
                // One of a child's two neighbours on an axis is its sibling, the other lies behind its parent's wall.
                const std::size_t upper = i >> axis & 1;
                Point3 wall = centre;
                wall[axis] = upper != 0 ? child.box.pmax[axis] : child.box.pmin[axis];
                child.neighbour[2 * axis + (upper ^ 1)] = node.child[i ^ (std::size_t(1) << axis)];
                child.neighbour[2 * axis + upper] = Towards(from.neighbour[2 * axis + upper], wall);
            }
            Link(child, levels - 1, later);
        }
    }

 private:
    // The child of `cube` at `probe`. A cube without children is larger than the one that asks, and is the answer itself.
    SurfaceLink Towards(SurfaceLink cube, const Point3& probe) const {
        if (cube.endsDescent()) return cube;
        const SurfaceNode& node = nodes_[cube.index()];
        return node.child[unsigned(probe.x > node.centre.x) + 2 * unsigned(probe.y > node.centre.y) +
                          4 * unsigned(probe.z > node.centre.z)];
    }

    const std::vector<SurfaceNode>& nodes_;
    std::vector<SurfaceBlock>& blocks_;
};

// Lets up to `threads` threads share the indices below `count`: each calls work(next), and next(i) hands it an index until
// there are none left. Whoever is free takes the next one, so the work must not care who does it. It must not throw. Threads
// that can't be had are done without.
template <typename Work>
void RunInParallel(unsigned threads, std::size_t count, const Work& work) {
    std::atomic<std::size_t> taken = 0;
    const auto next = [&taken, count](std::size_t& i) { return (i = taken.fetch_add(1, std::memory_order_relaxed)) < count; };
    std::vector<std::thread> helpers;
    try {
        for (std::size_t i = 1; i < std::min<std::size_t>(threads, count); ++i) helpers.emplace_back([&] { work(next); });
    } catch (const std::exception&) {
        // The threads there are, at the least this one, do all of it.
    }
    work(next);
    for (std::thread& helper : helpers) helper.join();
}

}  // namespace

class SurfaceBuild {
 public:
    SurfaceBuild(const TriangleMesh& mesh, const SurfaceBuildLimits& limits)
        : mesh_(mesh), budget_(MostBytes(limits)), threads_(limits.threads != 0 ? limits.threads : Processors()) {}

    bool Run(SurfaceTree& tree, std::string& problem) {
        if (!CheckMesh(mesh_, problem) || !FindBound(problem)) return false;
        bool done = false;
        try {
            done = CopyVertices() && SetUpTriangles() && SplitUpperLevels() && FinishSubtrees() && JoinSubtrees();
            if (done) {
                LinkNeighbours();
                tree_.grid_.Build(tree_.nodes_, tree_.root_, tree_.bound_);
            }
        } catch (const std::bad_alloc&) {
            done = false;
        }
        if (!done) {
            problem = "the octree over " + std::to_string(mesh_.faces.size()) + " faces needs more than the " +
                      std::to_string(budget_.limit() >> 20) +
                      " MB it may take; large faces that lie on one another need the most";
            return false;
        }
        tree = std::move(tree_);
        return true;
    }

 private:
    static std::size_t MostBytes(const SurfaceBuildLimits& limits) {
        if (limits.memoryBytes != 0) return limits.memoryBytes;
        const std::size_t memory = PhysicalMemory();
        return memory != 0 ? memory / 2 : std::size_t(4) << 30;
    }
    static unsigned Processors() { return std::max(1u, std::thread::hardware_concurrency()); }

    bool FindBound(std::string& problem) {
        Box3 box = EmptyBox3();
        for (const Point3& p : mesh_.verts) box.Include(p);
        const Point3 width = box.Width();
        Box3& bound = tree_.bound_;
        bound = MakeCube(box.Center(), std::max({width.x, width.y, width.z}));
        // The two factors differ on purpose, and the second pad is a part of the cube that has grown already. So the cube's
        // walls, and the walls of all its children, stay off the middle planes on which symmetric grounds are cut.
        const Point3 grown = bound.Width();
        bound.pmin = bound.pmin - grown * 0.012545679f;
        const Point3 grownTwice = bound.Width();
        bound.pmax = bound.pmax + grownTwice * 0.012345679f;

        const Point3 side = bound.Width(), sum = bound.pmin + bound.pmax;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            if (std::isfinite(side[axis]) && std::isfinite(sum[axis])) continue;
            problem = "the mesh reaches further than single precision can measure";
            return false;
        }
        return true;
    }

    bool CopyVertices() {
        if (!MakeRoom(tree_.verts_, mesh_.verts.size(), budget_)) return false;
        tree_.verts_ = mesh_.verts;
        return true;
    }

    bool SetUpTriangles() {
        constexpr std::size_t kBatch = 4096;
        const std::size_t count = mesh_.faces.size();
        std::vector<SurfaceTriangle>& triangles = tree_.triangles_;
        if (!MakeRoom(triangles, count, budget_)) return false;
        triangles.resize(count);
        RunInParallel(threads_, (count + kBatch - 1) / kBatch, [&](const auto& next) {
            for (std::size_t batch = 0; next(batch);) {
                for (std::size_t i = batch * kBatch; i < std::min(count, (batch + 1) * kBatch); ++i) {
                    const std::uint32_t* v = mesh_.faces[i].v;
                    std::copy_n(v, 3, triangles[i].corner);
                    // A triangle without area stays in the lists like any other.
                    SetUpTriangle(tree_.verts_[v[0]], tree_.verts_[v[1]], tree_.verts_[v[2]], triangles[i]);
                }
            }
        });
        return true;
    }

    bool SplitUpperLevels() {
        std::vector<std::uint32_t> list;
        if (!MakeRoom(list, mesh_.faces.size(), budget_)) return false;
        for (std::size_t i = 0; i < mesh_.faces.size(); ++i) list.push_back(std::uint32_t(i));
        NodeSplitter splitter(tree_.verts_, tree_.triangles_, budget_);
        if (!splitter.Split(tree_.bound_, 0, list, upper_, &tasks_)) return false;
        FreeVector(list, budget_);
        return true;
    }

    bool FinishSubtrees() {
        std::atomic<bool> failed = false;
        RunInParallel(threads_, tasks_.size(), [&](const auto& next) {
            try {
                NodeSplitter splitter(tree_.verts_, tree_.triangles_, budget_);
                for (std::size_t i = 0; !failed && next(i);) {
                    SubtreeTask& task = tasks_[i];
                    if (!splitter.Split(task.box, kTaskDepth, task.list, task.part, nullptr)) failed = true;
                    FreeVector(task.list, budget_);
                }
            } catch (const std::bad_alloc&) {
                failed = true;
            }
        });
        return !failed;
    }

    bool JoinSubtrees() {
        std::size_t nodes = upper_.nodes.size(), blocks = upper_.blocks.size(), faces = upper_.faces.size();
        std::size_t largestPart = upper_.bytes();
        for (const SubtreeTask& task : tasks_) {
            nodes += task.part.nodes.size();
            blocks += task.part.blocks.size();
            faces += task.part.faces.size();
            largestPart = std::max(largestPart, task.part.bytes());
        }
        if (std::max({nodes, blocks, faces}) >= SurfaceLink::kMostIndices) return false;
        // Storage that is only reserved takes no memory yet. It fills as fast as the parts are freed, so there is never more
        // than one part that exists twice.
        if (!budget_.Take(largestPart + SurfaceGrid::BytesOver(nodes))) return false;
        tree_.nodes_.reserve(nodes);
        tree_.blocks_.reserve(blocks);
        tree_.faces_.reserve(faces);
        tree_.root_ = Append(upper_);
        for (SubtreeTask& task : tasks_) tree_.nodes_[task.parent].child[task.child] = Append(task.part);
        return true;
    }

    // Moves a part behind what the tree holds already, and tells where its root is now.
    SurfaceLink Append(TreePart& part) {
        const std::size_t nodes = tree_.nodes_.size(), blocks = tree_.blocks_.size(), faces = tree_.faces_.size();
        const auto moved = [&](SurfaceLink link) {
            if (link.isNone()) return link;  // the place of a subtree that comes later
            return link.endsDescent() ? SurfaceLink::Leaf(link.index() + blocks) : SurfaceLink::Inner(link.index() + nodes);
        };
        for (SurfaceNode node : part.nodes) {
            for (SurfaceLink& child : node.child) child = moved(child);
            tree_.nodes_.push_back(node);
        }
        for (std::size_t i = 0; i < part.blocks.size(); i += 1 + part.blocks[i].leaf.groups()) {
            part.blocks[i].leaf.firstFaces += std::uint32_t(faces);
        }
        tree_.blocks_.insert(tree_.blocks_.end(), part.blocks.begin(), part.blocks.end());
        tree_.faces_.insert(tree_.faces_.end(), part.faces.begin(), part.faces.end());
        const SurfaceLink root = moved(part.root);
        part = {};
        return root;
    }

    void LinkNeighbours() {
        const NeighbourLinker linker(tree_.nodes_, tree_.blocks_);
        std::vector<NeighbourLinker::Start> starts;
        linker.Link({tree_.root_, tree_.bound_, {}}, kTaskDepth, &starts);
        RunInParallel(threads_, starts.size(), [&](const auto& next) {
            for (std::size_t i = 0; next(i);) linker.Link(starts[i], 0, nullptr);
        });
    }

    const TriangleMesh& mesh_;
    MemoryBudget budget_;
    const unsigned threads_;
    SurfaceTree tree_;
    TreePart upper_;
    std::vector<SubtreeTask> tasks_;
};

bool SurfaceTree::Build(const TriangleMesh& mesh, const SurfaceBuildLimits& limits, std::string& problem) {
    return SurfaceBuild(mesh, limits).Run(*this, problem);
}

}  // namespace tavrik
