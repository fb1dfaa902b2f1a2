#include "host/master_panel.h"

#include <cassert>

#include "host/sdk/panels.h"

namespace tavrik_host {
namespace {

constexpr MapID kCarSetup = 0, kParameters = 1, kDrivingParameters = 3;
constexpr int kUpdateSurface = 1023, kLock = 1102, kUnlock = 1103, kDrive = 1015;

void Press(MapID map, int control) {
    PanelWindow* page = PageOf(map);
    assert(page != nullptr);
    PressControl(*page, control);
}

}  // namespace

MasterPanel::MasterPanel(INode& master) { OpenPanel(master); }
MasterPanel::~MasterPanel() { ClosePanel(); }
void MasterPanel::UpdateSurface() { Press(kParameters, kUpdateSurface); }
void MasterPanel::LockComponents() { Press(kCarSetup, kLock); }
void MasterPanel::UnlockComponents() { Press(kCarSetup, kUnlock); }
void MasterPanel::Drive() { Press(kDrivingParameters, kDrive); }

}  // namespace tavrik_host
