#include "plugin/master_panels.h"

#include <custcont.h>
#include <iparamm2.h>

#include <string>

#include "drive/controller_setup.h"
#include "plugin/desktop.h"
#include "plugin/master.h"
#include "plugin/module.h"
#include "plugin/rollout_controls.h"
#include "plugin/wide_text.h"
#include "rig/parameter_tables.h"

namespace tavrik_plugin {
namespace {

constexpr int kUpdateCar = 1102, kResetCar = 1103, kUpdateSurface = 1023, kResetAnimation = 1107, kDrive = 1015;
constexpr int kBikeDriving = 1124, kBalanceSpinner = 1095, kBalanceLabel = 1125;

constexpr int kAboutDialog = 115, kAboutText = 1108, kAboutCategory = 4000;
constexpr const MCHAR* kAboutFormat = _M("Tavrik %s\r\n\r\nVehicle dynamics rig and driving simulator\r\nby Norvane");
constexpr const MCHAR* kVersion = _M("3.64");

/// One rollout of the master. The procedures stay when the rollout goes: the next master that is edited gets the same ones.
class MasterDlgProc : public ParamMap2UserDlgProc {
 public:
    Tavrik* master = nullptr;

    INT_PTR DlgProc(TimeValue, IParamMap2*, HWND hWnd, UINT msg, WPARAM wParam, LPARAM) override {
        if (master == nullptr) return 0;
        if (msg == WM_INITDIALOG) Open(hWnd);
        if (msg == WM_COMMAND) Press(hWnd, LOWORD(wParam));
        return 0;
    }
    void DeleteThis() override {}

 protected:
    virtual void Open(HWND) {}
    virtual void Press(HWND page, int control) = 0;
};

class CarSetupDlgProc final : public MasterDlgProc {
    void Press(HWND, int control) override {
        std::string problem;
        if (control == kUpdateCar && !master->SetupCar(problem)) ShowError(problem);
        if (control == kResetCar) master->ResetCar();
    }
};

class CarParamDlgProc final : public MasterDlgProc {
    void Press(HWND, int control) override {
        if (control == kUpdateSurface) master->UpdateSurface();
    }
};

class CarAnimationDlgProc final : public MasterDlgProc {
    void Press(HWND, int control) override {
        std::string nobodyIsTold;  // whoever wipes a recording gets an empty one, or had none
        if (control == kResetAnimation) master->SetupCar(nobodyIsTold);
    }
};

class CarDriveDlgProc final : public MasterDlgProc {
    void Open(HWND page) override { EnableBalance(page); }
    void Press(HWND page, int control) override {
        if (control == kDrive) master->Drive();
        if (control == kBikeDriving) EnableBalance(page);
    }

    /// Only a bike needs to be balanced.
    void EnableBalance(HWND page) {
        const BOOL bike = master->Params().GetInt(tavrik::MasterParam::Bike_Drive) != 0 ? TRUE : FALSE;
        if (ISpinnerControl* const spinner = GetISpinner(GetDlgItem(page, kBalanceSpinner))) {
            spinner->Enable(bike);
            ReleaseISpinner(spinner);
        }
        EnableWindow(GetDlgItem(page, kBalanceLabel), bike);
    }
};

class ControllerSetupDlgProc final : public ParamMap2UserDlgProc {
 public:
    tavrik::TavrikControllerSetup setup{Windows(), RolloutControls(), Pads(), ControlsFile()};

    INT_PTR DlgProc(TimeValue, IParamMap2*, HWND hWnd, UINT msg, WPARAM wParam, LPARAM) override {
        if (setup.master != nullptr) setup.RolloutMessage(WindowIdOf(hWnd), msg, wParam);
        return 0;
    }
    void DeleteThis() override {}
};

struct Panels {
    CarSetupDlgProc carSetup;
    CarParamDlgProc parameters;
    CarAnimationDlgProc animation;
    CarDriveDlgProc driving;
    ControllerSetupDlgProc controllers;
};

Panels& ThePanels() {
    static auto& panels = *new Panels;  // never freed: the scene may outlive the library's statics
    return panels;
}

INT_PTR AboutProc(HWND, UINT, WPARAM, LPARAM) { return 0; }

std::wstring AboutText() {
    std::wstring text = kAboutFormat;
    return text.replace(text.find(_M("%s")), 2, kVersion);
}

}  // namespace

void AttachPanels(Tavrik& master) {
    Panels& panels = ThePanels();
    ParamBlockDesc2& desc = BlockDescOf("Tavrik");
    MasterDlgProc* const procs[] = {&panels.carSetup, &panels.parameters, &panels.animation, &panels.driving};
    for (MasterDlgProc* const proc : procs) proc->master = &master;
    MapID map = 0;
    for (MasterDlgProc* const proc : procs) desc.SetUserDlgProc(map++, proc);
    panels.controllers.setup.master = &master.Params();
    tavrik::LoadControls(ControlsFile(), master.Params());
    desc.SetUserDlgProc(map, &panels.controllers);
}

void EndPanels(Tavrik& master) {
    tavrik::TavrikControllerSetup& setup = ThePanels().controllers.setup;
    if (setup.master == &master.Params()) setup.EndCapture();
}

void ForgetMaster(const Tavrik& master) {
    Panels& panels = ThePanels();
    if (panels.carSetup.master != &master) return;
    MasterDlgProc* const procs[] = {&panels.carSetup, &panels.parameters, &panels.animation, &panels.driving};
    for (MasterDlgProc* const proc : procs) proc->master = nullptr;
    panels.controllers.setup.master = nullptr;
}

HWND OpenAboutPage(Interface& ip, Tavrik& master) {
    const HWND page = ip.AddRollupPage(ModuleHandle(), MAKEINTRESOURCEW(kAboutDialog), AboutProc, _M("About"),
                                       reinterpret_cast<LPARAM>(&master), 0, kAboutCategory);
    if (page == nullptr) return nullptr;
    SetWindowTextW(GetDlgItem(page, kAboutText), AboutText().c_str());
    SetWindowLongPtrW(page, GWLP_USERDATA, reinterpret_cast<std::intptr_t>(&master));
    ip.RegisterDlgWnd(page);
    return page;
}

}  // namespace tavrik_plugin
