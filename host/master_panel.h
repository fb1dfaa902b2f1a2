#pragma once
/// The buttons of a master object, pressed as a user presses them.

#include "host/sdk/max.h"

namespace tavrik_host {

enum class MasterButton { UpdateSurface, Lock, Unlock, Drive };

/// Presses a button of the master object whose panel is open. @return false where none is
bool PressMasterButton(MasterButton button);

/// Opens the pages of a master object, and closes them at the end. The desktop must be there.
class MasterPanel {
 public:
    explicit MasterPanel(INode& master);
    ~MasterPanel();
    MasterPanel(const MasterPanel&) = delete;
    MasterPanel& operator=(const MasterPanel&) = delete;

    void UpdateSurface();
    /// "Update (Lock Components)"
    void LockComponents();
    /// "Reset (Unlock Components)"
    void UnlockComponents();
    /// "Drive": opens the drive window, or says in a message box why not.
    void Drive();
};

}  // namespace tavrik_host
