#include "studio/view/view_commands.h"

#include "host/rig_objects.h"
#include "rig/class_identities.h"
#include "studio/view/gestures.h"
#include "studio/view/view_widget.h"

namespace tavrik_studio {
namespace {

using tavrik::ObjectClass;
using tavrik_host::ViewSide;

const char* const kObjectName = "view.commands";

/// Whom a follow command means: the selected node, or else the chassis of the first car.
INode* WhomToFollow(Editor& editor) {
    const std::vector<INode*> selected = editor.Selection();
    if (!selected.empty()) return selected.front();
    const std::vector<INode*> chassis = tavrik_host::NodesOf(ObjectClass::Chassis);
    return chassis.empty() ? nullptr : chassis.front();
}

}  // namespace

ViewCommands& ViewCommands::Of(Editor& editor, Commands& commands) {
    for (QObject* const child : commands.children()) {
        if (child->objectName() == kObjectName) return *static_cast<ViewCommands*>(child);
    }
    return *new ViewCommands(editor, commands);
}

ViewCommands::ViewCommands(Editor& editor, Commands& commands) : QObject(&commands), editor_(editor), commands_(commands) {
    setObjectName(kObjectName);
    AddSides();
    AddLook();
    AddTools();
    AddCreations();
}

QAction& ViewCommands::Add(const char* name, const QString& text, const QString& keys, std::function<void(ViewWidget&)> run,
                           std::function<bool(ViewWidget&)> isOn, std::function<bool()> isPossible) {
    QAction& action = commands_.Add(
        name, text, QKeySequence(keys),
        [this, run = std::move(run)] {
            if (ViewWidget* const view = Active()) run(*view);
            Refresh();
        },
        [this, isPossible = std::move(isPossible)] { return Active() != nullptr && (!isPossible || isPossible()); });
    // Letters are keys of the view alone: elsewhere they are typed.
    action.setShortcutContext(Qt::WidgetWithChildrenShortcut);
    actions_.push_back(&action);
    if (isOn) {
        action.setCheckable(true);
        switches_.push_back({&action, std::move(isOn)});
    }
    return action;
}

void ViewCommands::AddSides() {
    const auto side = [](ViewSide s) { return [s](ViewWidget& view) { view.SetSide(s); }; };
    Add("view.perspective", tr("&Perspective"), "P", side(ViewSide::Perspective));
    Add("view.top", tr("&Top"), "T", side(ViewSide::Top));
    Add("view.bottom", tr("Botto&m"), "Shift+T", side(ViewSide::Bottom));
    Add("view.front", tr("&Front"), "F", side(ViewSide::Front));
    Add("view.back", tr("&Back"), "Shift+F", side(ViewSide::Back));
    Add("view.left", tr("&Left"), "L", side(ViewSide::Left));
    Add("view.right", tr("&Right"), "Shift+L", side(ViewSide::Right));
}

void ViewCommands::AddLook() {
    Add("view.frame_selection", tr("Frame &Selection"), "Z", [](ViewWidget& view) { view.FrameSelection(); });
    Add("view.frame_all", tr("Frame &All"), "Shift+Z", [](ViewWidget& view) { view.FrameAll(); });
    Add(
        "view.follow", tr("Follow &Car"), "C", [this](ViewWidget& view) { FollowOrStop(view); },
        [](ViewWidget& view) { return view.Followed() != nullptr; });
    Add(
        "view.grid", tr("&Grid"), "G", [](ViewWidget& view) { view.SetGrid(!view.HasGrid()); },
        [](ViewWidget& view) { return view.HasGrid(); });
    Add(
        "view.sky", tr("S&ky"), "K", [](ViewWidget& view) { view.SetSky(!view.HasSky()); },
        [](ViewWidget& view) { return view.HasSky(); });
}

void ViewCommands::AddTools() {
    const auto add = [this](const char* name, const QString& text, const QString& keys, ViewTool tool) {
        Add(
            name, text, keys, [tool](ViewWidget& view) { view.SetTool(tool); },
            [tool](ViewWidget& view) { return view.Tool() == tool; });
    };
    add("tool.select", tr("&Select"), "Q", ViewTool::Select);
    add("tool.move", tr("&Move"), "W", ViewTool::Move);
    add("tool.rotate", tr("&Rotate"), "E", ViewTool::Rotate);
    add("tool.orbit", tr("&Orbit"), "O", ViewTool::Orbit);
    add("tool.pan", tr("&Pan"), "H", ViewTool::Pan);
    add("tool.zoom", tr("&Zoom"), "X", ViewTool::Zoom);
    Add(
        "tool.snap", tr("S&nap to Grid"), "S",
        [](ViewWidget& view) { view.SetSnap(view.Snap() > 0.0f ? 0.0f : GridWidthFor(view.State())); },
        [](ViewWidget& view) { return view.Snap() > 0.0f; });
}

void ViewCommands::AddCreations() {
    struct Creation {
        const char* name;
        ObjectClass objectClass;
    };
    constexpr Creation kCreations[] = {
        {"create.master", ObjectClass::Tavrik},         {"create.chassis", ObjectClass::Chassis},
        {"create.suspension", ObjectClass::Suspension}, {"create.wheel", ObjectClass::Wheel},
        {"create.sphere", ObjectClass::Sphere},         {"create.hitch", ObjectClass::Hitch},
        {"create.tongue", ObjectClass::Tongue},         {"create.push", ObjectClass::Push},
        {"create.start", ObjectClass::Start},
    };
    for (const Creation& creation : kCreations) {
        const ObjectClass objectClass = creation.objectClass;
        const std::string_view name = tavrik::FindClass(objectClass)->className;
        Add(
            creation.name, QString::fromUtf8(name.data(), qsizetype(name.size())), {},
            [objectClass](ViewWidget& view) { view.SetCreate(objectClass); },
            [objectClass](ViewWidget& view) { return view.Tool() == ViewTool::Create && view.CreateClass() == objectClass; },
            [objectClass] { return DescOf(objectClass) != nullptr; });
    }
}

void ViewCommands::FollowOrStop(ViewWidget& view) const {
    if (view.Followed() != nullptr) {
        view.SetFollow(nullptr);
        return;
    }
    INode* const node = WhomToFollow(editor_);
    if (node == nullptr) emit view.Said(tr("There is nothing to follow; make a car, or select a node."));
    view.SetFollow(node);
}

void ViewCommands::Adopt(ViewWidget& view) {
    for (QAction* const action : actions_) view.addAction(action);
    if (active_.isNull()) SetActive(view);
    connect(&view, &ViewWidget::SettingsChanged, this, &ViewCommands::Refresh);
}

void ViewCommands::SetActive(ViewWidget& view) {
    active_ = &view;
    Refresh();
}

ViewWidget* ViewCommands::Active() const { return active_; }

void ViewCommands::Refresh() {
    for (const Switch& known : switches_) known.action->setChecked(!active_.isNull() && known.isOn(*active_));
}

}  // namespace tavrik_studio
