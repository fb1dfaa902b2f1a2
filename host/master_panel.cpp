#include "host/master_panel.h"

#include <cassert>

#include "host/rig_objects.h"
#include "host/sdk/panels.h"

namespace tavrik_host {
namespace {

struct ButtonPlace {
    MapID page;
    int control;
};

ButtonPlace PlaceOf(MasterButton button) {
    constexpr MapID kCarSetup = 0, kParameters = 1, kDrivingParameters = 3;
    switch (button) {
        case MasterButton::UpdateSurface:
            return {kParameters, 1023};
        case MasterButton::Lock:
            return {kCarSetup, 1102};
        case MasterButton::Unlock:
            return {kCarSetup, 1103};
        case MasterButton::Drive:
            return {kDrivingParameters, 1015};
    }
    return {};
}

void Press(MasterButton button) {
    [[maybe_unused]] const bool isThere = PressMasterButton(button);
    assert(isThere);
}

}  // namespace

bool PressMasterButton(MasterButton button) {
    INode* const node = PanelNode();
    const ButtonPlace place = PlaceOf(button);
    PanelWindow* const page = node != nullptr && ClassOf(*node) == tavrik::ObjectClass::Tavrik ? PageOf(place.page) : nullptr;
    if (page != nullptr) PressControl(*page, place.control);
    return page != nullptr;
}

MasterPanel::MasterPanel(INode& master) { OpenPanel(master); }
MasterPanel::~MasterPanel() { ClosePanel(); }
void MasterPanel::UpdateSurface() { Press(MasterButton::UpdateSurface); }
void MasterPanel::LockComponents() { Press(MasterButton::Lock); }
void MasterPanel::UnlockComponents() { Press(MasterButton::Unlock); }
void MasterPanel::Drive() { Press(MasterButton::Drive); }

}  // namespace tavrik_host
