#pragma once
/// Everything that an artist can set on a rig object, as plain tables: identity, name, type, default, range, and the control
/// that edits it. Programs read and write parameters by number, never by name. The records are constants: any number of threads
/// may read them, at any time, and references to them stay good.

#include <cstdint>
#include <span>
#include <string_view>

namespace tavrik {

enum class ParamType : std::uint16_t {
    Float = 0,
    Int = 1,
    Bool = 4,
    World = 7,  // single precision, a length or what scales like one
    Texmap = 15,
    Node = 17,
    Matrix = 20,
    WorldTable = 0x807,  // a fixed number of `World` values
};

enum ParamFlags : std::uint32_t {
    kParamPlain = 0,
    kParamAnimatable = 1,
    kParamNoReference = 0x100,  // the node is remembered, but its changes don't reach the owner
};

enum class ControlKind : std::uint8_t { None, Spinner, Radio, CheckBox, PickButton, MapButton };

/// What a spinner's edit field shows.
enum class EditType : std::uint8_t { Int = 0, Float = 1, Universe = 2, Time = 6 };

/// The scale of a spinner that finds its own step.
constexpr float kAutoScale = -1.0f;

/// Which object a pick button takes.
enum class NodeValidator : std::uint8_t { None, Tongue, Master };

/// The control of one parameter. A line break in a text is a line break beside the control.
struct ParamControl {
    ControlKind kind = ControlKind::None;
    EditType edit = EditType::Float;  // of a spinner
    std::int32_t ids[6] =
        {};  // edit field and spinner of each entry in turn, or the buttons in the order of their values, or one
    std::int32_t idCount = 0;
    float scale = kAutoScale;  // of a spinner
    NodeValidator validator = NodeValidator::None;
    std::string_view label;           // beside the control, or around it if it has parts; a hidden parameter may have one too
    std::int32_t labelId = 0;         // of the label, where a dialog enables and disables it; else 0
    std::string_view partLabels[4];   // of the entries, or of the buttons
    std::int32_t partLabelCount = 0;  // 0 where there is but one part
};

/// The rollout of a parameter that has no control.
constexpr std::int32_t kNoRollout = -1;

/// One parameter. `Int` and `Bool` values are whole numbers; `Float`, `World` and `WorldTable` values are single precision, and
/// so are their default and limits here: narrowing them loses nothing.
struct ParamRow {
    std::int32_t id;
    std::string_view name;
    ParamType type;
    bool hasDefault;       // false for references and matrices, and where none is declared
    bool hasRange;         // false likewise, and for flags
    std::uint32_t flags;   // of `ParamFlags`
    std::int32_t entries;  // 1, or the number of values in a `WorldTable`
    std::int32_t rollout;  // index into those of its table, or `kNoRollout`
    double defaultValue;   // of each entry, as it is stored: it may lie outside the range
    double low, high;      // what can be typed or spun, both ends included
    ParamControl control;
};

struct ParamRollout {
    std::int32_t dialog;  // template
    std::int32_t title;   // string table entry, 0 for none
};

/// The parameters of one class, in the order in which the host lists them.
struct ParamTable {
    std::string_view className;
    std::uint32_t flags;  // of the block
    std::span<const ParamRollout> rollouts;
    std::span<const ParamRow> rows;
    /// Numbers of those with a control in the order in which the class attaches the controls at run time; empty where the table
    /// itself carries them.
    std::span<const std::int32_t> attachOrder;
};

// Each class has one block, made with its object and edited by rollouts of its own.
constexpr std::int32_t kBlockId = 0;
constexpr std::int32_t kBlockReference = 0;  // the block's place among the references of its object
constexpr std::string_view kBlockName = "parameters";
constexpr std::uint32_t kBlockFlags = 6;
constexpr std::uint32_t kBlockFlagsSeveralRollouts = 38;

// The numbers of the parameters. Scenes are saved with them, so they never move.

struct MasterParam {
    enum Id : std::int32_t {
        Dummy_Size = 0,
        Gravity = 1,
        Surface_Node = 2,
        Start_Node = 3,
        Frame_Step = 4,
        Sample_Step = 5,
        Rudder_Sensitivity = 6,
        Rudder_Angle = 7,
        Throttle_Sensitivity = 8,
        Brake_Sensitivity = 9,
        Time_Delay = 10,
        Driving_Type = 11,
        Driving_Target = 12,
        Driving_Forecast = 13,
        Max_Drift_Speed = 14,
        Differencial_Drive_Sensitivity = 15,
        Bike_Drive = 16,
        Balance_Force = 17,
        CtrlKbdThrottle = 18,
        CtrlKbdLeft = 19,
        CtrlKbdRight = 20,
        CtrlKbdFwdBkwd = 21,
        CtrlKbdBreak = 22,
        CtrlKbdHandBreak = 23,
        CtrlKbdNitro = 24,
        CtrlJoyForward = 25,
        CtrlJoyBackward = 26,
        CtrlJoyBreak = 27,
        CtrlJoyHandBreak = 28,
        CtrlJoyNitro = 29,
        CtrlJoyWheelCtrl = 30,
        CtrlJoyThrottleCtrl = 31,
        CtrlJoyDriver = 32,
        CtrlJoyPort = 33,
    };
};

struct ChassisParam {
    enum Id : std::int32_t { Width = 0, Length = 1, Height = 2, Mass = 3, Solidity = 4, Rotation_Center_Shift = 5 };
};

struct SuspensionParam {
    enum Id : std::int32_t {
        Length = 0,
        Ruggedness_Factor = 1,
        Ruggedness = 2,
        Damping = 3,
        Top_Stop = 4,
        Bottom_Stop = 5,
        Shift = 6,
        Steering = 7,
        Drive = 8,
        Handbrake = 9,
        Buffer_Ruggedness = 10,
        Suspension_Type = 11,
        Wheel_Shift = 12,
    };
};

struct WheelParam {
    enum Id : std::int32_t { Radius = 0, Width = 1, Mass = 2, Ruggedness = 3, Grip = 4, Pattern_Map = 5 };
};

struct SphereParam {
    enum Id : std::int32_t { Radius = 0, Ruggedness = 1, Grip = 2 };
};

struct HitchParam {
    enum Id : std::int32_t { Radius = 0, Ruggedness = 1, Connection_Node = 2 };
};

struct TongueParam {
    enum Id : std::int32_t { Radius = 0 };
};

struct PushParam {
    enum Id : std::int32_t {
        Dummy_Size = 0,
        Push_Type = 1,
        Push_Force = 2,
        Start_Time = 3,
        Push_Length = 4,
        Push_Anim_Mult = 5,
        Tavrik = 6,
    };
};

struct StartParam {
    enum Id : std::int32_t { Size = 0 };
};

struct ControlParam {
    enum Id : std::int32_t { Tavrik_Node = 0, Object_Type = 1, Axle_Num = 2, Slot_Position = 3 };
};

struct TrackTexParam {
    enum Id : std::int32_t {
        Frame_Step = 0,
        General_Intensity = 1,
        Brake_Intensity = 2,
        Samples = 3,
        Base_Bump = 4,
        Pattern_Bump = 5,
    };
};

/// The eleven classes, master first.
std::span<const ParamTable> ParamTables();

/// @return null for an unknown class
const ParamTable* FindParamTable(std::string_view className);

/// @return null for an unknown number
const ParamRow* FindParam(const ParamTable& table, std::int32_t id);

/// The default of a `Float`, `World` or `WorldTable` parameter (of each entry). The parameter must exist, be of such a type and
/// have a default (asserted).
float DefaultFloat(const ParamTable& table, std::int32_t id);
/// The default of an `Int` or `Bool` parameter. The parameter must exist, be of such a type and have a default (asserted).
std::int32_t DefaultInt(const ParamTable& table, std::int32_t id);

/// `value` as a control of this parameter would leave it: within the range, if there is one. A NaN becomes the lower end. Only
/// for what is typed or spun: programs and files store what they like.
double ClampToRange(const ParamRow& row, double value);

/// The class that an object must have for a pick button with `validator`; empty where any will do.
std::string_view WantedClass(NodeValidator validator);

/// Whether a pick button with `validator` takes a node. A cleared value always passes.
/// @param objectClass  class name of the picked node's object, empty when the node has none
bool ValidatorAccepts(NodeValidator validator, bool cleared, std::string_view objectClass);

/// The text of a string table entry; empty for one that nothing reads.
std::string_view ParamString(std::int32_t id);

}  // namespace tavrik
