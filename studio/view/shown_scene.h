#pragma once
/// The scene as views show it: taken once for all of them, and again only as far as something has changed.

#include <QObject>
#include <cstdint>
#include <memory>
#include <vector>

#include "host/render/render_model.h"
#include "host/sdk/line_view.h"
#include "host/sdk/node_watch.h"
#include "studio/model/editor.h"

namespace tavrik_studio {

/// What one node draws itself as.
struct NodeLines {
    ULONG node = 0;  // handle
    std::size_t first = 0, count = 0;
    bool isSelected = false;
};

class ShownScene final : public QObject, private tavrik_host::NodeWatcher {
    Q_OBJECT
 public:
    explicit ShownScene(Editor& editor);
    /// The one that all views of an editor share.
    static std::shared_ptr<ShownScene> Of(Editor& editor);

    /// Takes what has changed since the last time.
    void Update();
    bool IsStale() const { return isModelStale_ || isViewStale_; }

    // As of the last update.
    const tavrik_host::RenderModel& Model() const { return model_; }
    /// Differs when shapes, materials or pictures of the model do.
    std::uint64_t ModelRevision() const { return modelRevision_; }
    /// Beside the model's things.
    const std::vector<Matrix3>& Places() const { return places_; }
    const std::vector<char>& Chosen() const { return chosen_; }
    /// Of a shape, in its own space.
    const Box3& BoxOf(std::size_t shape) const { return boxes_[shape]; }
    const std::vector<tavrik_host::ViewLine>& Lines() const { return lines_; }
    const std::vector<NodeLines>& Nodes() const { return nodes_; }
    std::uint64_t LineRevision() const { return lineRevision_; }

    bool IsMesh(INode& node) const;
    /// What cars drive on.
    bool IsGround(INode& node) const;
    /// Points that show how far a node reaches: corners of its mesh's box, the ends of its lines, or at least its origin.
    std::vector<Point3> PointsOf(INode& node) const;
    /// Of all nodes.
    std::vector<Point3> AllPoints() const;
    /// Sentences about what can't be shown, each once.
    QStringList TakeNotes();

 signals:
    /// Something is to be drawn anew.
    void Changed();

 private:
    void ForgetNode(INode* node) override;
    void MarkView();
    void TakeModel();
    bool IsSameModel() const;
    void TakeLines();

    Editor& editor_;
    tavrik_host::RenderModel model_;
    /// By what a thing is recognised: a change that leaves these as they are has made no mesh anew.
    struct Identity {
        ULONG node;
        const Mesh* mesh;
        int vertices, faces;
        bool operator==(const Identity&) const = default;
    };
    static std::vector<Identity> Identities();
    std::vector<Identity> identities_;
    std::vector<Box3> boxes_;  // beside the model's shapes
    std::vector<Matrix3> places_;
    std::vector<char> chosen_;
    std::vector<tavrik_host::ViewLine> lines_;
    std::vector<NodeLines> nodes_;
    std::uint64_t modelRevision_ = 0, lineRevision_ = 0;
    bool isModelStale_ = true, isReplaced_ = true, isViewStale_ = true;
    QStringList notes_;
};

}  // namespace tavrik_studio
