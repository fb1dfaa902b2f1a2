#include "drive/damper_stand.h"

#include <iterator>
#include <system_error>

#include "drive/damper_drawing.h"
#include "drive/window_messages.h"
#include "solver/truncate.h"

namespace tavrik {
namespace {

constexpr std::uint64_t kRoadSeed = 1000;

constexpr std::string_view kStandGroup = "Running-in Stand Setting", kDamperGroup = "Damper Setting";

constexpr StandRow kRows[] = {
    {1094, 1093, "Road Knoll Rate:", &DamperStand::knollRate, 0.0f, 10.0f, kStandGroup},
    {1096, 1095, "Road Hole Rate:", &DamperStand::holeRate, 0.0f, 10.0f, kStandGroup},
    {1090, 1089, "Mass per Damper:", &DamperStand::mass, 0.0f, 10000000.0f, kStandGroup},
    {1112, 1111, "Gravity:", &DamperStand::gravity, 0.0f, 1000000.0f, kStandGroup},
    {1114, 1113, "Rigidity Factor:", &DamperStand::rigidityFactor, 0.0f, 1000000.0f, kDamperGroup},
    {1092, 1091, "Spring Rigidity:", &DamperStand::springRigidity, 0.0f, 1000000.0f, kDamperGroup},
    {1036, 1035, "Oil Damping:", &DamperStand::oilDamping, 0.0f, 1000000.0f, kDamperGroup},
    {1042, 1041, "Damper Shift:", &DamperStand::damperShift, -1000000.0f, 1000000.0f, kDamperGroup},
    {1044, 1043, "Buffer Rigidity:", &DamperStand::bufferRigidity, 0.0f, 1000000.0f, kDamperGroup},
};
static_assert(std::size(kRows) == kStandRows);

/// The settings that are the suspension's, in the order in which they are read and written.
struct ShownParam {
    std::int32_t id;
    std::atomic<float> DamperStand::*field;
};
constexpr ShownParam kParams[] = {
    {SuspensionParam::Ruggedness_Factor, &DamperStand::rigidityFactor},
    {SuspensionParam::Ruggedness, &DamperStand::springRigidity},
    {SuspensionParam::Damping, &DamperStand::oilDamping},
    {SuspensionParam::Shift, &DamperStand::damperShift},
    {SuspensionParam::Buffer_Ruggedness, &DamperStand::bufferRigidity},
};

}  // namespace

std::span<const StandRow, kStandRows> StandRows() { return kRows; }

DamperStand::DamperStand(const std::function<double(std::int32_t)>& GetMasterScale)
    : gravity(float(9.8 / GetMasterScale(kMetres))), random(kRoadSeed) {}

DamperStand::~DamperStand() { CleanUp(); }

void DamperStand::OpenStand(ParamBlock& block, StandLayer& layer) {
    if (window != 0 || open_) return;
    open_ = true;
    pblock = &block;
    core = &layer;
    for (const ShownParam& param : kParams) this->*param.field = block.GetFloat(param.id);
    sizeScale = block.GetFloat(SuspensionParam::Length) * 0.3f;  // single, as the settings are: a length of 50 gives 15.000001
    model = {};
    random.Seed(kRoadSeed);
    const std::int32_t result = layer.RunDialog(kStandDialog, *this);
    CleanUp();  // a dialog that the layer took down without a word
    if (result == kStandSetup)
        for (const ShownParam& param : kParams) block.SetFloat(param.id, this->*param.field);
    open_ = false;
}

bool DamperStand::HandleMessage(WindowId dialog, std::uint32_t message, std::uint64_t wParam, std::uint64_t /*lParam*/) {
    const WindowId mine = window;
    if (message == kWmInitDialog) {
        if (!open_ || mine != 0 || dialog == 0) return false;
        Initialize(dialog);
        return true;
    }
    // Controls may still speak up while the dialog goes down; by then nobody listens.
    if (mine == 0 || dialog != mine) return false;
    switch (message) {
        case kWmCommand:
            if (SignedLowWord(wParam) == kStandSetupControl) return Close(kStandSetup), true;
            if (SignedLowWord(wParam) == kStandCancelControl) return Close(kStandCancel), true;
            return false;
        case kWmClose:
            return Close(kStandCancel), true;
        case kCcSpinnerButtonUp:
        case kWmCustEditEnter:
            return TakeValue(SignedLowWord(wParam));
        case kWmPaint:
            core->BeginPaint(dialog);
            core->EndPaint(dialog);
            return true;
        default:
            return false;
    }
}

DamperSettings DamperStand::Settings() const {
    DamperSettings settings;
    settings.mass = mass;
    settings.knollRate = knollRate;
    settings.holeRate = holeRate;
    settings.gravity = gravity;
    settings.rigidityFactor = rigidityFactor;
    settings.springRigidity = springRigidity;
    settings.oilDamping = oilDamping;
    settings.damperShift = damperShift;
    settings.bufferRigidity = bufferRigidity;
    settings.sizeScale = sizeScale;
    return settings;
}

void DamperStand::Initialize(WindowId dialog) {
    window = dialog;
    core->RegisterDlgWnd(dialog);
    for (std::size_t i = 0; i < kStandRows; ++i) {
        const StandRow& row = kRows[i];
        StandSpinner& spinner = core->GetISpinner(dialog, row.spinner);
        spinners[i] = &spinner;
        spinner.SetLimits(row.low, row.high);
        spinner.SetAutoScale(true);
        spinner.LinkToEdit(row.edit, EditType::Float);
        spinner.SetValue(this->*row.field, false);
    }
    offscreen = core->CreateIOffScreenBuf(dialog, kStandFrameControl, 0);
    try {
        thread_ = std::thread(&DamperStand::Run, this);
    } catch (const std::system_error&) {
        // Without a thread there is no picture, but the values can still be set.
        if (offscreen) core->DestroyIOffScreenBuf(*offscreen);
        offscreen = nullptr;
    }
}

/// Takes over the value of the row to which `control` belongs.
bool DamperStand::TakeValue(std::int32_t control) {
    for (std::size_t i = 0; i < kStandRows; ++i) {
        if (control != kRows[i].spinner && control != kRows[i].edit) continue;
        if (!spinners[i]) return false;  // let go already, on the way out
        this->*kRows[i].field = spinners[i]->GetFVal();
        return true;
    }
    return false;
}

void DamperStand::CleanUp() {
    const WindowId dialog = window;
    if (dialog == 0) return;
    for (StandSpinner*& spinner : spinners) {
        core->ReleaseISpinner(*spinner);
        spinner = nullptr;
    }
    core->UnRegisterDlgWnd(dialog);
    window = 0;
    // The thread ends with its pass. The next opening resets what it works on, so it has to be gone before.
    if (thread_.joinable()) thread_.join();
}

void DamperStand::Close(std::int32_t result) {
    const WindowId dialog = window;
    CleanUp();
    core->EndDialog(dialog, result);
}

/// The thread's.
void DamperStand::Run() {
    while (window != 0) {
        if (offscreen) DrawStand(model, *offscreen);
        StandStep(model, Settings(), random);
        core->Sleep(TruncateToInt(kStandStep * 1000.0));
    }
    if (offscreen) core->DestroyIOffScreenBuf(*offscreen);
    offscreen = nullptr;
}

}  // namespace tavrik
